#include "screens/FrmCheckHealth.h"

#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "hcv/ResponseCodes.h"
#include "patients/PatientEntry.h"
#include "patients/Provider.h"
#include "screens/BusyParts.h"
#include "screens/EnterMovesOn.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

enum Column { EdtColumn, DoctorColumn, PatientColumn, HealthNumberColumn };

QString checkedText(const QDateTime& at) {
    return at.isValid() ? datetext::slashed(at.date()) + QLatin1Char(' ') +
                              at.time().toString(QStringLiteral("HH:mm"))
                        : QStringLiteral("never");
}

}  // namespace

FrmCheckHealth::FrmCheckHealth(Database& db, AppSettings& settings, SettingsStore& store,
                               Prompter& prompter, const Clock& clock, const SqlLog& log,
                               QString officeFolder, QWidget* parent)
    : TransferScreen(db, settings, store, prompter, clock, log, {}, std::move(officeFolder),
                     parent),
      m_batches(db, store, clock, m_prompter, log, m_folder),
      m_wait([this](const QString& text) {
          m_status->setText(text);
          m_status->repaint();
      }) {
    setWindowTitle(kTitle);

    // Made in the order Tab (and Enter) follows.
    QWidget* day = buildDayPanel();
    QWidget* card = buildCardPanel();
    QWidget* grid = buildGridPanel();
    QLabel* status = makeStatusLine();

    auto* top = new QHBoxLayout;
    top->addWidget(day, 1);
    top->addWidget(card, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(grid, 1);
    layout->addWidget(status);

    // This list has always named the doctors first name first.
    loadDoctors(m_settings.lastDoctor,
                [](const Provider& p) { return p.fName + QLatin1Char(' ') + p.lName; });
    m_day->setText(datetext::slashed(m_clock.today()));
    resize(880, 540);
    m_doctor->setFocus();
}

QWidget* FrmCheckHealth::buildDayPanel() {
    auto* panel = new QGroupBox(QStringLiteral("A doctor's appointments"), this);
    auto* enter = new EnterMovesOn(this);
    enter->watch(makeDoctorList(panel));
    m_day = recordlist::sizedLine(panel, 10, 10);
    m_day->setObjectName(QStringLiteral("txtDate"));
    m_day->setPlaceholderText(QStringLiteral("YYYY/MM/DD"));
    enter->watch(m_day);
    m_start = button(panel, QStringLiteral("cmdStart"), QStringLiteral("&Start"),
                     QStringLiteral("Writes the cards of the doctor's patients booked that day "
                                    "into the overnight file"));
    m_start->setAutoDefault(true);  // Enter on it presses it
    connect(m_start, &QPushButton::clicked, this, guarded(this, &FrmCheckHealth::startClicked));

    auto* dayRow = new QHBoxLayout;
    dayRow->addWidget(m_day);
    dayRow->addStretch();
    auto* startRow = new QHBoxLayout;
    startRow->addWidget(m_start);
    startRow->addStretch();
    auto* form = new QFormLayout(panel);
    form->addRow(labelFor(m_doctor, QStringLiteral("&Doctor:"), panel), m_doctor);
    form->addRow(labelFor(m_day, QStringLiteral("D&ate:"), panel), dayRow);
    form->addRow(QString(), startRow);
    return panel;
}

QWidget* FrmCheckHealth::buildCardPanel() {
    auto* panel = new QGroupBox(QStringLiteral("One card"), this);
    auto* enter = new EnterMovesOn(this);
    m_healthNum = recordlist::sizedLine(panel, 12, 12);
    m_healthNum->setObjectName(QStringLiteral("txtHealthNum"));
    enter->watch(m_healthNum);
    m_version = recordlist::sizedLine(panel, 2, 3);
    m_version->setObjectName(QStringLiteral("txtVersion"));
    enter->watch(m_version);
    m_card = button(panel, QStringLiteral("cmdCard"), QStringLiteral("Send &Card"),
                    QStringLiteral("Writes this card, for the chosen doctor, into its own file"));
    m_card->setAutoDefault(true);
    auto* lookUp = button(panel, QStringLiteral("cmdLookUp"), QStringLiteral("&Look Up"),
                          QStringLiteral("What is stored of the last answer about this card"));
    lookUp->setAutoDefault(true);
    connect(m_card, &QPushButton::clicked, this, guarded(this, &FrmCheckHealth::cardClicked));
    connect(lookUp, &QPushButton::clicked, this, guarded(this, &FrmCheckHealth::lookUpClicked));
    m_lookUp = new QLabel(panel);
    m_lookUp->setObjectName(QStringLiteral("lblLookUp"));
    m_lookUp->setWordWrap(true);
    m_lookUp->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* numberRow = new QHBoxLayout;
    numberRow->addWidget(m_healthNum);
    numberRow->addSpacing(12);
    numberRow->addWidget(labelFor(m_version, QStringLiteral("&Version:"), panel));
    numberRow->addWidget(m_version);
    numberRow->addStretch();
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_card);
    buttons->addWidget(lookUp);
    buttons->addStretch();
    auto* form = new QFormLayout(panel);
    form->addRow(labelFor(m_healthNum, QStringLiteral("Health &number:"), panel), numberRow);
    form->addRow(QString(), buttons);
    form->addRow(m_lookUp);
    return panel;
}

QWidget* FrmCheckHealth::buildGridPanel() {
    auto* panel = new QWidget(this);
    m_grid = recordlist::make(panel,
                              {QStringLiteral("EDT"), QStringLiteral("Doctor"),
                               QStringLiteral("Patient ID"), QStringLiteral("Health Number")},
                              HealthNumberColumn);
    m_grid->setObjectName(QStringLiteral("grdCards"));
    m_gridCaption = labelFor(m_grid, QStringLiteral("Cards of the &batch"), panel);

    auto* methodLabel = labelFor(makeMethodList(panel), QStringLiteral("Met&hod:"), panel);
    m_submit = button(panel, QStringLiteral("cmdSubmit"), QStringLiteral("S&ubmit"),
                      QStringLiteral("Hands the batch's files to the ministry"));
    auto* close =
        button(panel, QStringLiteral("cmdClose"), QStringLiteral("Cl&ose"), QStringLiteral("Esc"));
    connect(m_submit, &QPushButton::clicked, this, guarded(this, &FrmCheckHealth::submitClicked));
    connect(close, &QPushButton::clicked, this, guarded(this, &QWidget::close));

    auto* submitRow = new QHBoxLayout;
    submitRow->addWidget(methodLabel);
    submitRow->addWidget(m_method);
    submitRow->addWidget(m_submit);
    submitRow->addStretch();
    submitRow->addWidget(close);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_gridCaption);
    layout->addWidget(m_grid, 1);
    layout->addLayout(submitRow);
    return panel;
}

void FrmCheckHealth::open(const QString& doctorId, const QDate& day) {
    if (!doctorId.isEmpty()) {
        const int index = m_doctor->findData(doctorId, Qt::UserRole, Qt::MatchFixedString);
        if (index >= 0) {
            m_doctor->setCurrentIndex(index);
        }
    }
    if (day.isValid()) {
        m_day->setText(datetext::slashed(day));
    }
}

void FrmCheckHealth::startClicked() {
    std::optional<hcv::PreparedBatch> batch;
    {
        const BusyParts busy({m_start, m_card, m_submit});
        batch = m_batches.prepareDay(doctorId(), m_day->text().trimmed());
    }
    if (batch) {
        showPrepared(*batch);
    }
}

void FrmCheckHealth::cardClicked() {
    std::optional<hcv::PreparedBatch> batch;
    {
        const BusyParts busy({m_start, m_card, m_submit});
        batch = m_batches.prepareCard(doctorId(), m_healthNum->text().trimmed(),
                                      m_version->text().trimmed());
    }
    if (batch) {
        showPrepared(*batch);
    }
}

void FrmCheckHealth::showPrepared(const hcv::PreparedBatch& batch) {
    // A file prepared again replaces its cards; the other file of the batch keeps its own.
    if (batch.batchId != m_batchId) {
        m_cards.clear();
    }
    m_batchId = batch.batchId;
    m_cards.removeIf(
        [&](const hcv::OvernightCard& card) { return card.fileName == batch.fileName; });
    m_cards.append(batch.cards);
    fillGrid();
    setStatus(QStringLiteral("%1: %2 card(s) of batch %3.")
                  .arg(batch.fileName)
                  .arg(batch.cards.size())
                  .arg(batch.batchId));
}

void FrmCheckHealth::fillGrid() {
    m_grid->clear();
    for (const hcv::OvernightCard& card : std::as_const(m_cards)) {
        const QString number =
            (card.healthNum.trimmed() + QLatin1Char(' ') + card.versionCode.trimmed()).trimmed();
        auto* row = new QTreeWidgetItem(
            m_grid, {card.fileName, card.doctorId,
                     card.patientId > 0 ? QString::number(card.patientId) : QString(), number});
        row->setTextAlignment(PatientColumn, Qt::AlignRight | Qt::AlignVCenter);
    }
    m_gridCaption->setText(m_batchId.isEmpty()
                               ? QStringLiteral("Cards of the &batch")
                               : QStringLiteral("Cards of the &batch %1").arg(m_batchId));
    if (m_grid->topLevelItemCount() > 0) {
        m_grid->setCurrentItem(m_grid->topLevelItem(0));
    }
}

void FrmCheckHealth::lookUpClicked() {
    const QString number = m_healthNum->text().trimmed();
    const QString version = m_version->text().trimmed();
    const QList<hcv::StoredCheck> found = m_batches.storedResults(number, version);
    if (found.isEmpty()) {
        m_lookUp->setText(QStringLiteral("No patient has the health number %1 with version "
                                         "code '%2'.")
                              .arg(number, version));
        return;
    }
    QStringList lines;
    for (const hcv::StoredCheck& check : found) {
        const QString message = hcv::ResponseMessage(check.response);
        QString response = check.response.isEmpty() ? QStringLiteral("none") : check.response;
        if (!message.isEmpty()) {
            response += QLatin1Char(' ') + message;
        }
        lines << QStringLiteral("%1 %2 - Status: %3 - Response: %4 - Checked: %5")
                     .arg(QString::number(check.patientId), check.name,
                          QString::number(check.status), response, checkedText(check.checkedAt));
    }
    m_lookUp->setText(lines.join(QLatin1Char('\n')));
}

void FrmCheckHealth::submitClicked() {
    QString batchId = m_batchId;
    if (batchId.isEmpty()) {
        // Nothing prepared in this window: the typed day's batch, prepared earlier.
        batchId = datetext::yyyymmdd(readTypedDate(m_day->text()));
    }
    if (batchId.isEmpty()) {
        m_prompter.error(
            {quotedInMessage(m_day->text().trimmed()) + QStringLiteral(" is not a valid date.")});
        return;
    }
    const std::optional<TransferPlaces> places =
        placesForTransfer(QStringLiteral("The disk to copy the card files to"), submitDiskFolder());
    if (!places) {
        return;
    }
    int sent = 0;
    setStatus({});
    {
        const BusyParts busy({m_start, m_card, m_submit, m_grid});
        sent = m_batches.submit(batchId, method(), m_wait, places->diskFolder);
    }
    setStatus(QStringLiteral("Batch %1: %2 file(s) submitted (%3).")
                  .arg(batchId)
                  .arg(sent)
                  .arg(m_method->currentText()));
}

}  // namespace brimsett
