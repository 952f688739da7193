// The book's health card pieces: the day's rejected cards and the overnight validation.
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "hcv/RejectedCards.h"
#include "screens/ReportPreview.h"
#include "screens/SlotGuard.h"
#include "screens/frmAppBook.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>

namespace brimsett {

void frmAppBook::addCardButton(QHBoxLayout* row) {
    auto* button = new QPushButton(QStringLiteral("Card Chec&ks"), this);
    button->setAutoDefault(false);
    button->setToolTip(QStringLiteral("Rejected cards (Ctrl+J), overnight validation (Ctrl+O)"));
    auto* menu = new QMenu(button);
    connect(menu->addAction(QStringLiteral("Print &Rejected Cards\tCtrl+J")), &QAction::triggered,
            this, guarded(this, &frmAppBook::printRejectedCards));
    connect(menu->addAction(QStringLiteral("&Overnight Validation...\tCtrl+O")),
            &QAction::triggered, this, guarded(this, &frmAppBook::openOvernightCheck));
    button->setMenu(menu);
    row->addWidget(button);
}

void frmAppBook::printRejectedCards() {
    const QList<hcv::RejectedCard> cards = hcv::rejectedCards(m_db, currentDate(), m_providers);
    if (cards.isEmpty()) {
        m_prompter.tell(QStringLiteral("Rejected Cards"),
                        {QStringLiteral("No patient of this day has a rejected card.")},
                        Icon::Information);
        return;
    }
    showReportPreview(hcv::rejectedCardsReport(cards, currentDate(), m_providers, m_clock.today()),
                      reports::ReportStyle::fromSettings(m_settings), this);
}

void frmAppBook::openOvernightCheck() {
    if (m_overnight) {
        m_overnight(currentDoctor(), currentDate());
    }
}

}  // namespace brimsett
