#include "screens/ChoiceDelegate.h"

#include <QComboBox>

namespace brimsett {

ChoiceDelegate::ChoiceDelegate(QList<Choice> choices, QObject* parent)
    : QStyledItemDelegate(parent), m_choices(std::move(choices)) {}

QWidget* ChoiceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                      const QModelIndex&) const {
    auto* box = new QComboBox(parent);
    for (const Choice& c : m_choices) {
        box->addItem(c.text, c.value);
    }
    return box;
}

void ChoiceDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    auto* box = static_cast<QComboBox*>(editor);
    const int at = box->findData(index.data(Qt::UserRole));
    box->setCurrentIndex(at >= 0 ? at : box->findText(index.data().toString()));
}

void ChoiceDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                  const QModelIndex& index) const {
    const auto* box = static_cast<QComboBox*>(editor);
    if (box->currentIndex() < 0) {
        return;
    }
    // The value first: the text's change is the one a list watching for edits reacts to.
    model->setData(index, box->currentData(), Qt::UserRole);
    model->setData(index, box->currentText(), Qt::DisplayRole);
}

}  // namespace brimsett
