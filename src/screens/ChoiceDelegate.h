#pragma once

#include <QList>
#include <QStyledItemDelegate>
#include <QVariant>

namespace brimsett {

// A list cell edited by picking one of a fixed set of choices: the cell shows the choice's
// text and keeps its value under Qt::UserRole.
class ChoiceDelegate : public QStyledItemDelegate {
public:
    struct Choice {
        QString text;
        QVariant value;
    };

    ChoiceDelegate(QList<Choice> choices, QObject* parent);
    void setChoices(QList<Choice> choices) { m_choices = std::move(choices); }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;

private:
    QList<Choice> m_choices;
};

}  // namespace brimsett
