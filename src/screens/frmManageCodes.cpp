#include "screens/frmManageCodes.h"
#include "screens/SlotGuard.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace brimsett {

frmManageCodes::frmManageCodes(const QStringList& titles, QWidget* parent, const QString& title)
    : QDialog(parent) {
    setWindowTitle(title);
    m_list = new QListWidget(this);
    m_list->addItems(titles);
    m_list->setCurrentRow(0);
    const QFontMetrics metrics(m_list->font());
    m_list->setMinimumHeight(int(titles.size()) * (metrics.height() + 6) + 8);
    connect(m_list, &QListWidget::itemActivated, this,
            guarded(this, [this](QListWidgetItem* item) { choose(m_list->row(item)); }));

    auto* hint = new QLabel(QStringLiteral("Choose one and press Enter."), this);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* open = buttons->addButton(QStringLiteral("&Open"), QDialogButtonBox::ActionRole);
    QPushButton* close = buttons->addButton(QDialogButtonBox::Close);
    open->setAutoDefault(false);
    close->setAutoDefault(false);
    connect(open, &QPushButton::clicked, this,
            guarded(this, [this] { choose(m_list->currentRow()); }));
    connect(close, &QPushButton::clicked, this, guarded(this, &QDialog::reject));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(hint);
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);
    setMinimumWidth(320);
    m_list->setFocus();
}

void frmManageCodes::choose(int index) {
    if (index >= 0 && index < m_list->count()) {
        emit chosen(index);
    }
}

}  // namespace brimsett
