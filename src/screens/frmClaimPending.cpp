#include "screens/frmClaimPending.h"

#include "claims/ClaimResubmit.h"
#include "claims/ClaimSplit.h"
#include "claims/PayProgram.h"
#include "foundation/AppSettings.h"
#include "foundation/DateText.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "screens/RecordList.h"
#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

enum ListColumn { Doc, Account, Id, Patient, ChargeTo, Service, Diag, NS, Fee, ServDate };

QPushButton* button(const QString& text, const QString& keys = {}) {
    auto* b = new QPushButton(text);
    b->setAutoDefault(false);
    b->setToolTip(keys);
    return b;
}

}  // namespace

frmClaimPending::frmClaimPending(Database& db, AppSettings& settings, Prompter& prompter,
                                 const Clock& clock, const SqlLog& log, MoneyFormat money,
                                 QWidget* parent)
    : QGroupBox(QStringLiteral("Pending Claims"), parent),
      m_db(db),
      m_settings(settings),
      m_prompter(prompter),
      m_clock(clock),
      m_log(log),
      m_money(money) {
    m_doctor = new QComboBox;
    m_order = new QComboBox;
    m_order->addItem(QStringLiteral("Account"), int(PendingOrder::Account));
    m_order->addItem(QStringLiteral("Patient"), int(PendingOrder::Patient));
    m_order->addItem(QStringLiteral("Service Date"), int(PendingOrder::ServiceDate));
    m_order->addItem(QStringLiteral("Doctor"), int(PendingOrder::Doctor));
    auto* doctorLabel = new QLabel(QStringLiteral("Sho&w:"));
    doctorLabel->setBuddy(m_doctor);
    auto* orderLabel = new QLabel(QStringLiteral("&Order by:"));
    orderLabel->setBuddy(m_order);

    // Made without a parent so that Tab reaches it after the boxes above it.
    m_list =
        recordlist::make(nullptr,
                         {QStringLiteral("Doc"), QStringLiteral("Account"), QStringLiteral("ID"),
                          QStringLiteral("Patient"), QStringLiteral("ChargeTo"),
                          QStringLiteral("Service"), QStringLiteral("Diag"), QStringLiteral("NS"),
                          QStringLiteral("Fee"), QStringLiteral("ServDate")},
                         Patient);
    m_list->setMinimumHeight(70);
    m_list->installEventFilter(this);
    for (int column : {Id, NS, Fee}) {
        m_list->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    }
    m_total = new QLabel;

    auto* remove = button(QStringLiteral("&Delete"), QStringLiteral("Delete"));
    auto* split = button(QStringLiteral("S&plit"));
    auto* reverse = button(QStringLiteral("&Reverse Split"));
    auto* resubmitButton = button(QStringLiteral("Res&ubmit..."));
    connect(remove, &QPushButton::clicked, this, guarded(this, &frmClaimPending::deleteChosen));
    connect(split, &QPushButton::clicked, this, guarded(this, &frmClaimPending::splitChosen));
    connect(reverse, &QPushButton::clicked, this, guarded(this, &frmClaimPending::reverseSplits));
    connect(resubmitButton, &QPushButton::clicked, this, guarded(this, &frmClaimPending::resubmit));
    connect(m_list, &QTreeWidget::itemActivated, this, guarded(this, [this] {
                if (const auto claim = chosenClaim()) {
                    emit openRequested(*claim);
                }
            }));
    connect(m_doctor, &QComboBox::currentIndexChanged, this,
            guarded(this, &frmClaimPending::reload));
    connect(m_order, &QComboBox::currentIndexChanged, this,
            guarded(this, &frmClaimPending::reload));

    auto* top = new QHBoxLayout;
    top->addWidget(doctorLabel);
    top->addWidget(m_doctor, 1);
    top->addSpacing(16);
    top->addWidget(orderLabel);
    top->addWidget(m_order);
    top->addStretch(1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_total, 1);
    for (QPushButton* b : {remove, split, reverse, resubmitButton}) {
        bottom->addWidget(b);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_list, 1);
    layout->addLayout(bottom);
}

void frmClaimPending::setProviders(const QList<Provider>& providers) {
    const QString chosen = chosenDoctor();
    {
        const QSignalBlocker quiet(m_doctor);
        m_doctor->clear();
        m_doctor->addItem(QStringLiteral("All doctors"), QString());
        for (const Provider& p : providers) {
            m_doctor->addItem(p.doctorId + QStringLiteral(" - ") + p.displayName(), p.doctorId);
        }
        m_doctor->setCurrentIndex(std::max(0, m_doctor->findData(chosen)));
    }
    reload();
}

QString frmClaimPending::chosenDoctor() const {
    return m_doctor->currentData().toString();
}

std::optional<qint64> frmClaimPending::chosenClaim() const {
    const QTreeWidgetItem* item = m_list->currentItem();
    if (item == nullptr) {
        return std::nullopt;
    }
    return item->data(0, recordlist::kKeyRole).toLongLong();
}

void frmClaimPending::fail(const QString& doing, const QString& message) {
    m_prompter.error({doing, message});
}

void frmClaimPending::reload() {
    const std::optional<qint64> chosen = chosenClaim();
    QList<PendingLine> lines;
    QString total;
    try {
        PendingClaims pending(m_db, m_settings);
        lines = pending.lines(chosenDoctor(), PendingOrder(m_order->currentData().toInt()));
        total = pending.totalLine(chosenDoctor(), m_money);
    } catch (const DbError& e) {
        fail(QStringLiteral("The pending claims could not be read."), e.message());
    }
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    QTreeWidgetItem* again = nullptr;
    for (const PendingLine& line : std::as_const(lines)) {
        auto* item = new QTreeWidgetItem(
            m_list,
            {line.doc, line.account, QString::number(line.patientId), line.patient,
             payprog::shortForm(payprog::indexOf(line.chargeTo)), line.service, line.diag,
             QString::number(line.numServ), line.fee ? line.fee->currency(m_money) : QString(),
             datetext::slashed(line.serviceDate)});
        item->setData(0, recordlist::kKeyRole, line.claimId);
        for (int column : {Id, NS, Fee}) {
            item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
        }
        if (again == nullptr && chosen == line.claimId) {
            again = item;
        }
    }
    for (int column = 0; column < m_list->columnCount(); ++column) {
        if (column != Patient) {
            m_list->resizeColumnToContents(column);
        }
    }
    m_list->setCurrentItem(again ? again : m_list->topLevelItem(0));
    m_total->setText(total);
}

void frmClaimPending::deleteChosen() {
    const std::optional<qint64> claim = chosenClaim();
    if (!claim) {
        return;
    }
    try {
        if (PendingClaims(m_db, m_settings).deleteClaim(*claim, m_prompter, m_clock, m_log)) {
            emit claimDeleted(*claim);
        }
    } catch (const DbError& e) {
        fail(QStringLiteral("The claim could not be deleted."), e.message());
    }
    reload();
}

void frmClaimPending::splitChosen() {
    const std::optional<qint64> claim = chosenClaim();
    if (!claim || !m_leaveOpenClaim()) {
        return;
    }
    try {
        const QList<qint64> parts = ClaimSplit(m_db, m_log).split(*claim);
        QStringList numbers;
        for (qint64 part : parts) {
            numbers << QString::number(part);
        }
        emit note(parts.isEmpty()
                      ? QStringLiteral("Claim %1 was not split.").arg(*claim)
                      : QStringLiteral("Claim %1 split; new claim(s): %2.")
                            .arg(QString::number(*claim), numbers.join(QStringLiteral(", "))));
    } catch (const DbError& e) {
        fail(QStringLiteral("The claim could not be split."), e.message());
    }
    reload();
}

void frmClaimPending::reverseSplits() {
    if (!m_leaveOpenClaim()) {
        return;
    }
    try {
        if (const auto reversal = ClaimSplit(m_db, m_log).reverseAll(m_prompter)) {
            QString text =
                QStringLiteral("%1 split claim(s) reversed.").arg(reversal->partsReversed);
            if (!reversal->leftAlone.isEmpty()) {
                text += QStringLiteral(" %1 left as they are: their claim is no longer pending.")
                            .arg(reversal->leftAlone.size());
            }
            emit note(text);
        }
    } catch (const DbError& e) {
        fail(QStringLiteral("The split claims could not be reversed."), e.message());
    }
    reload();
}

void frmClaimPending::resubmit() {
    bool ok = false;
    const QString account =
        QInputDialog::getText(this, QStringLiteral("Resubmit"), QStringLiteral("Account number:"),
                              QLineEdit::Normal, {}, &ok);
    if (!ok || account.trimmed().isEmpty()) {
        return;
    }
    try {
        const int count = ClaimResubmit(m_db, m_prompter, m_clock, m_log).resubmitAccount(account);
        if (count > 0) {
            emit note(QStringLiteral("%1 claim(s) back in Pending Claims.").arg(count));
        }
    } catch (const DbError& e) {
        fail(QStringLiteral("The account could not be resubmitted."), e.message());
    }
    reload();
}

bool frmClaimPending::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Delete && key->modifiers() == Qt::NoModifier) {
            deleteChosen();
            return true;
        }
    }
    return QGroupBox::eventFilter(watched, event);
}

}  // namespace brimsett
