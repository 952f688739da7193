#include "screens/frmClaim.h"

#include "claims/ClaimEntryRecord.h"
#include "claims/PayProgram.h"
#include "foundation/AppSettings.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "patients/HealthNumbers.h"
#include "screens/EnterMovesOn.h"
#include "screens/RecordList.h"
#include "screens/SlotGuard.h"
#include "screens/frmClaimGrid.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTreeWidget>

// The header of claim entry: its fields, the order Enter takes through them, and finding
// the patient from what is typed in the patient number.

namespace brimsett {

namespace {

// The ministry's service location indicators.
const QStringList kLocationCodes = {"HDS", "HED", "HIP", "HOP", "HRP",
                                    "IHF", "OFF", "OTN", "PDF", "RTF"};

// The shortest health number of any province: a shorter number can only be a patient's.
constexpr int kShortestHealthNumber = 8;

bool isEnter(const QKeyEvent* key) {
    return (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
           (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

// Label and field pairs, left to right, on as many rows as they need.
class FieldRows {
public:
    FieldRows(QGroupBox* box, int pairsPerRow)
        : m_grid(new QGridLayout(box)), m_pairs(pairsPerRow) {
        for (int pair = 0; pair < pairsPerRow; ++pair) {
            m_grid->setColumnStretch(pair * 2 + 1, 1);
        }
    }
    void add(const QString& label, QWidget* field, int span = 1) {
        if (m_column + span > m_pairs) {
            ++m_row;
            m_column = 0;
        }
        auto* caption = new QLabel(label);
        caption->setBuddy(field);
        m_grid->addWidget(caption, m_row, m_column * 2);
        m_grid->addWidget(field, m_row, m_column * 2 + 1, 1, span * 2 - 1);
        m_column += span;
        // Rows stay together at the top when the box beside is taller.
        m_grid->setRowStretch(m_row, 0);
        m_grid->setRowStretch(m_row + 1, 1);
    }

private:
    QGridLayout* m_grid;
    int m_pairs;
    int m_row = 0;
    int m_column = 0;
};

}  // namespace

QLineEdit* frmClaim::field(QString ClaimEntry::*member, int maxLength, int widthInChars,
                           const QString& hint) {
    QLineEdit* edit = recordlist::sizedLine(nullptr, maxLength, widthInChars);
    edit->setPlaceholderText(hint);
    m_bindings.push_back({member, edit});
    return edit;
}

QWidget* frmClaim::buildHeader() {
    const QString dateHint = QStringLiteral("YYYY/MM/DD");
    auto* header = new QWidget;
    auto* enter = new EnterMovesOn(this);

    auto* who = new QGroupBox(QStringLiteral("Claim"));
    FieldRows whoRows(who, 3);
    m_provider = new QComboBox;
    m_provider->setMinimumContentsLength(24);
    m_patientId = field(&ClaimEntry::patientId, 30, 12, QStringLiteral("number or name"));
    m_patientId->installEventFilter(this);  // Enter there looks the patient up
    m_patientName = new QLabel;
    whoRows.add(QStringLiteral("Pro&vider:"), m_provider);
    whoRows.add(QStringLiteral("Patient &ID:"), m_patientId);
    whoRows.add(QString(), m_patientName);

    auto* patient = new QGroupBox(QStringLiteral("Patient"));
    FieldRows patientRows(patient, 2);
    patientRows.add(QStringLiteral("&Health Number:"), field(&ClaimEntry::healthNum, 12, 12));
    patientRows.add(QStringLiteral("V&ersion:"), field(&ClaimEntry::versionCode, 2, 3));
    patientRows.add(QStringLiteral("&Last Name:"), field(&ClaimEntry::lName, 50, 0));
    patientRows.add(QStringLiteral("&First Name:"), field(&ClaimEntry::fName, 50, 0));
    patientRows.add(QStringLiteral("&Birth Date:"), field(&ClaimEntry::dob, 10, 10, dateHint));
    patientRows.add(QStringLiteral("Se&x:"), field(&ClaimEntry::sex, 1, 3, QStringLiteral("M/F")));
    patientRows.add(QStringLiteral("Provin&ce:"), field(&ClaimEntry::province, 2, 3));
    patientRows.add(QStringLiteral("Referring Dr.:"), field(&ClaimEntry::refDoc, 6, 7));
    patientRows.add(QStringLiteral("Facili&ty:"), field(&ClaimEntry::facilityNum, 4, 5));
    m_admitDate = field(&ClaimEntry::admitDate, 10, 10, dateHint);
    patientRows.add(QStringLiteral("&Admit Date:"), m_admitDate);

    auto* billing = new QGroupBox(QStringLiteral("Billing"));
    FieldRows billingRows(billing, 2);
    m_program = new QComboBox;
    m_program->addItems(payprog::storedForms());
    connect(m_program, &QComboBox::currentIndexChanged, this,
            guarded(this, &frmClaim::programChanged));
    billingRows.add(QStringLiteral("Pro&gram:"), m_program, 2);
    m_payer = new QComboBox;
    m_payer->setMinimumContentsLength(20);
    m_payers = new QPushButton(QStringLiteral("Pa&yers..."));
    m_payers->setAutoDefault(false);
    m_payers->setFocusPolicy(Qt::ClickFocus);  // Enter goes on past it; Alt+Y reaches it
    connect(m_payers, &QPushButton::clicked, this, guarded(this, &frmClaim::openPayers));
    auto* payerRow = new QWidget;
    auto* payerLayout = new QHBoxLayout(payerRow);
    payerLayout->setContentsMargins(0, 0, 0, 0);
    payerLayout->addWidget(m_payer, 1);
    payerLayout->addWidget(m_payers);
    billingRows.add(QStringLiteral("Third Party:"), payerRow, 2);
    billingRows.add(QStringLiteral("Referring Lab:"), field(&ClaimEntry::refLab, 4, 5));
    billingRows.add(QStringLiteral("Reg. Number:"), field(&ClaimEntry::regNum, 20, 12));
    m_sli = new QComboBox;
    m_sli->setEditable(true);
    m_sli->setInsertPolicy(QComboBox::NoInsert);
    m_sli->addItems(kLocationCodes);
    m_sli->setMinimumContentsLength(4);
    billingRows.add(QStringLiteral("SLI:"), m_sli);
    m_manualReview = new QCheckBox(QStringLiteral("&Manual Review"));
    billingRows.add(QString(), m_manualReview);

    for (const Binding& b : m_bindings) {
        enter->watch(b.edit);
    }
    for (QWidget* w :
         std::initializer_list<QWidget*>{m_provider, m_program, m_payer, m_sli, m_manualReview}) {
        enter->watch(w);
    }
    m_patientId->removeEventFilter(enter);
    m_admitDate->installEventFilter(this);  // with switch 2 Enter there goes to the items

    auto* layout = new QGridLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(who, 0, 0, 1, 2);
    layout->addWidget(patient, 1, 0);
    layout->addWidget(billing, 1, 1);
    layout->setColumnStretch(0, 3);
    layout->setColumnStretch(1, 2);

    // The pick list of patients found by name or health number.
    m_pick = recordlist::make(this,
                              {QStringLiteral("ID"), QStringLiteral("Name"),
                               QStringLiteral("Health Number"), QStringLiteral("Birth Date")},
                              1);
    m_pick->setWindowFlags(Qt::Popup);
    m_pick->installEventFilter(this);
    connect(m_pick, &QTreeWidget::itemActivated, this, guarded(this, &frmClaim::patientPicked));
    return header;
}

QWidget* frmClaim::buildButtons() {
    auto* bar = new QWidget;
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    auto* newButton = new QPushButton(QStringLiteral("&New Claim"));
    auto* saveButton = new QPushButton(QStringLiteral("&Save"));
    auto* closeButton = new QPushButton(QStringLiteral("Close"));
    newButton->setToolTip(QStringLiteral("Ctrl+N"));
    saveButton->setToolTip(QStringLiteral("Ctrl+S"));
    closeButton->setToolTip(QStringLiteral("Esc"));
    connect(newButton, &QPushButton::clicked, this, guarded(this, &frmClaim::newClicked));
    connect(saveButton, &QPushButton::clicked, this, guarded(this, &frmClaim::save));
    connect(closeButton, &QPushButton::clicked, this, guarded(this, &QWidget::close));
    for (QPushButton* b : {newButton, saveButton, closeButton}) {
        b->setAutoDefault(false);
        b->setFocusPolicy(Qt::ClickFocus);  // Enter and Tab stay with the claim
        row->addWidget(b);
        if (b == newButton) {
            // The status line sits between the buttons, so the items keep the height.
            row->addWidget(m_status, 1);
        }
    }
    return bar;
}

void frmClaim::orderTabs() {
    QList<QWidget*> chain = {m_provider};
    for (const Binding& b : m_bindings) {
        chain << b.edit;
        if (b.edit == m_admitDate) {
            chain << m_program << m_payer;
        }
    }
    chain << m_sli << m_manualReview << m_grid;
    for (int i = 1; i < chain.size(); ++i) {
        QWidget::setTabOrder(chain.at(i - 1), chain.at(i));
    }
}

void frmClaim::patientEntered() {
    const QString typed = m_patientId->text().trimmed();
    if (typed.isEmpty() || (m_patient && typed == QString::number(*m_patient))) {
        moveOnFromPatient();
        return;
    }
    PatientMatches found;
    try {
        if (const auto id = PatientRegister::readId(typed); id && m_register.exists(*id)) {
            showPatient(*id);
            moveOnFromPatient();
            return;
        }
        const bool digits =
            std::any_of(typed.begin(), typed.end(), [](QChar c) { return c.isDigit(); });
        if (!digits) {
            const int comma = typed.indexOf(QLatin1Char(','));
            found = comma < 0 ? m_search.byName(typed)
                              : m_search.byName(typed.left(comma).trimmed(),
                                                typed.mid(comma + 1).trimmed());
        } else if (const QString number = hn::fromTyped(typed);
                   number.size() >= kShortestHealthNumber) {
            found = m_search.byHealthNumber(number);
        }
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The patient could not be found."), e.message()});
        return;
    }
    if (found.rows.isEmpty()) {
        m_prompter.tell(kTitle, {QString::fromLatin1(kNoSuchPatient)}, Icon::Information);
        m_patientId->selectAll();
    } else if (found.rows.size() == 1) {
        showPatient(found.rows.first().id);
        moveOnFromPatient();
    } else {
        offerPatients(found);
    }
}

bool frmClaim::showPatient(qint64 id) {
    std::optional<PatientEntry> patient;
    try {
        patient = m_register.load(id);
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The patient could not be read."), e.message()});
    }
    if (!patient) {
        return false;
    }
    ClaimEntry entry = entryOnScreen();
    claimentry::copyPatient(entry, *patient);
    putFields(entry);
    m_patient = id;
    m_shownVersion = entry.versionCode.trimmed().toUpper();
    return true;
}

void frmClaim::offerPatients(const PatientMatches& found) {
    m_pick->clear();
    for (const PatientMatch& match : found.rows) {
        auto* item = new QTreeWidgetItem(
            m_pick, {QString::number(match.id), match.name, match.healthNumber, match.dob});
        item->setData(0, recordlist::kKeyRole, match.id);
    }
    for (int column : {0, 2, 3}) {
        m_pick->resizeColumnToContents(column);
    }
    if (found.more) {
        setStatus(QStringLiteral("The first %1 patients; type more to narrow the list.")
                      .arg(found.rows.size()));
    }
    m_pick->resize(std::max(480, m_patientId->width() * 3), 220);
    m_pick->move(m_patientId->mapToGlobal(QPoint(0, m_patientId->height())));
    m_pick->setCurrentItem(m_pick->topLevelItem(0));
    m_pick->show();
    m_pick->setFocus();
}

void frmClaim::patientPicked() {
    const QTreeWidgetItem* item = m_pick->currentItem();
    m_pick->hide();
    if (item != nullptr && showPatient(item->data(0, recordlist::kKeyRole).toLongLong())) {
        moveOnFromPatient();
    } else {
        m_patientId->setFocus();
    }
}

void frmClaim::moveOnFromPatient() {
    if (m_settings.option[2]) {
        m_admitDate->setFocus();
        m_admitDate->selectAll();
    } else {
        m_grid->goToFreeRow();
    }
}

bool frmClaim::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    if (watched == m_patientId && isEnter(key)) {
        patientEntered();
        return true;
    }
    if (watched == m_admitDate && isEnter(key) && m_settings.option[2]) {
        m_grid->goToFreeRow();
        return true;
    }
    if (watched == m_pick && key->key() == Qt::Key_Escape) {
        m_pick->hide();
        m_patientId->setFocus();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace brimsett
