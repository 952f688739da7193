#include "screens/frmPatients.h"

#include "patients/NameCase.h"
#include "screens/EnterMovesOn.h"
#include "screens/FieldCase.h"
#include "screens/RecordList.h"
#include "screens/SlotGuard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

// How the patient window is laid out: the find part, the record's fields and the buttons.
namespace brimsett {

namespace {

// Fields laid out in a grid, two label-field pairs to a row.
class FieldGrid {
public:
    explicit FieldGrid(QGroupBox* box) : m_grid(new QGridLayout(box)) {
        m_grid->setColumnStretch(1, 1);
        m_grid->setColumnStretch(3, 1);
    }
    void add(const QString& label, QWidget* field, int span = 1) {
        if (m_column + span > 2) {
            next();
        }
        auto* caption = new QLabel(label);
        caption->setBuddy(field);
        m_grid->addWidget(caption, m_row, m_column * 2);
        m_grid->addWidget(field, m_row, m_column * 2 + 1, 1, span * 2 - 1);
        m_column += span;
    }
    void next() {
        ++m_row;
        m_column = 0;
    }
    // A line of its own across the box, under the fields so far.
    void addLine(QWidget* widget) {
        next();
        m_grid->addWidget(widget, m_row, 0, 1, 4);
        next();
    }

private:
    QGridLayout* m_grid;
    int m_row = 0;
    int m_column = 0;
};

}  // namespace

QWidget* frmPatients::buildSearch() {
    auto* box = new QGroupBox(QStringLiteral("Find a patient (F3)"));
    m_findBy = new QComboBox;
    m_findBy->addItem(QStringLiteral("Name (Last, First)"), ByName);
    m_findBy->addItem(QStringLiteral("Health Number"), ByHealthNumber);
    m_findBy->addItem(QStringLiteral("Phone"), ByPhone);
    m_findBy->addItem(QStringLiteral("Patient ID"), ById);
    m_findBy->setObjectName(QStringLiteral("findBy"));
    m_findText = new QLineEdit;
    m_findText->setObjectName(QStringLiteral("findText"));
    m_findText->setPlaceholderText(QStringLiteral("e.g. Smi*, Jo  -  * any text, ? one letter"));
    // Without an access letter: F3 reaches the box and Enter there finds.
    auto* findButton = new QPushButton(QStringLiteral("Find"));
    connect(findButton, &QPushButton::clicked, this, guarded(this, &frmPatients::find));
    connect(m_findText, &QLineEdit::returnPressed, this, guarded(this, &frmPatients::find));

    m_results = recordlist::make(
        box,
        {QStringLiteral("ID"), QStringLiteral("Name"), QStringLiteral("Health Number"),
         QStringLiteral("Birth Date"), QStringLiteral("Phone")},
        1);
    // A busy desk looks through several namesakes at once, even on a small screen.
    const int rowHeight = m_results->fontMetrics().height() + 6;
    m_results->setMinimumHeight(m_results->header()->sizeHint().height() + 6 * rowHeight +
                                2 * m_results->frameWidth());
    m_results->installEventFilter(this);
    connect(m_results, &QTreeWidget::itemActivated, this, guarded(this, &frmPatients::openChosen));
    m_resultNote = new QLabel;

    auto* row = new QHBoxLayout;
    auto* byLabel = new QLabel(QStringLiteral("By:"));
    byLabel->setBuddy(m_findBy);
    row->addWidget(byLabel);
    row->addWidget(m_findBy);
    row->addWidget(m_findText, 1);
    row->addWidget(findButton);
    auto* layout = new QVBoxLayout(box);
    layout->addLayout(row);
    layout->addWidget(m_results);
    layout->addWidget(m_resultNote);
    return box;
}

QLineEdit* frmPatients::field(QString PatientEntry::*member, int maxLength, const QString& hint) {
    auto* edit = new QLineEdit;
    edit->setMaxLength(maxLength);
    edit->setPlaceholderText(hint);
    m_enter->watch(edit);
    m_bindings.push_back({member, edit});
    return edit;
}

QWidget* frmPatients::buildRecord() {
    const QString dateHint = QStringLiteral("YYYY/MM/DD");
    auto* record = new QWidget;
    auto* columns = new QGridLayout(record);
    columns->setContentsMargins(0, 0, 0, 0);

    auto* identity = new QGroupBox(QStringLiteral("Patient"));
    FieldGrid who(identity);
    m_id = field(&PatientEntry::patientId, 10);
    m_id->removeEventFilter(m_enter);  // Enter there looks the patient up
    m_lName = field(&PatientEntry::lName, 50);
    who.add(QStringLiteral("Patient &ID:"), m_id);
    m_state = new QLabel;
    who.add(QString(), m_state);
    who.add(QStringLiteral("&Last Name:"), m_lName);
    QLineEdit* fName = field(&PatientEntry::fName, 50);
    who.add(QStringLiteral("&First Name:"), fName);
    // Names typed in one case are given the capitals the desk would write by hand.
    for (QLineEdit* name : {m_lName, fName}) {
        connect(name, &QLineEdit::editingFinished, this,
                guarded(this, [name] { name->setText(nameCase(name->text())); }));
    }
    who.add(QStringLiteral("&Birth Date:"), field(&PatientEntry::dob, 10, dateHint));
    who.add(QStringLiteral("Se&x:"), field(&PatientEntry::sex, 1, QStringLiteral("M or F")));
    connect(m_id, &QLineEdit::returnPressed, this, guarded(this, &frmPatients::idEntered));
    connect(m_id, &QLineEdit::textEdited, this, guarded(this, &frmPatients::idTyped));

    auto* card = new QGroupBox(QStringLiteral("Health Card"));
    FieldGrid cardGrid(card);
    m_healthNum = field(&PatientEntry::healthNum, 12);
    m_province = field(&PatientEntry::province, 2, QStringLiteral("ON"));
    m_provinceName = new QLabel;
    m_healthNote = new QLabel;
    m_healthNote->setObjectName(QStringLiteral("healthNumberNote"));
    m_healthNote->setStyleSheet(QStringLiteral("color: #b00000;"));
    cardGrid.add(QStringLiteral("&Health Number:"), m_healthNum);
    cardGrid.add(QStringLiteral("&Version:"), field(&PatientEntry::versionCode, 2));
    cardGrid.add(QStringLiteral("Pr&ovince:"), m_province);
    cardGrid.add(QString(), m_provinceName);
    cardGrid.add(QStringLiteral("Expiry:"), field(&PatientEntry::expYear, 10, dateHint));
    cardGrid.addLine(m_healthNote);
    connect(m_healthNum, &QLineEdit::editingFinished, this,
            guarded(this, &frmPatients::healthNumberLeft));
    connect(m_province, &QLineEdit::textChanged, this,
            guarded(this, &frmPatients::provinceChanged));

    auto* address = new QGroupBox(QStringLiteral("Address"));
    FieldGrid where(address);
    where.add(QStringLiteral("&Address:"), field(&PatientEntry::address, 50), 2);
    where.add(QStringLiteral("Ci&ty:"), field(&PatientEntry::city, 30));
    QLineEdit* postalCode = field(&PatientEntry::postalCode, 10);
    capitalsAsTyped(postalCode);
    where.add(QStringLiteral("&Postal Code:"), postalCode);
    where.add(QStringLiteral("Co&untry:"), field(&PatientEntry::country, 30));
    where.next();
    where.add(QStringLiteral("Ho&me Phone:"), field(&PatientEntry::hPhone, 20));
    where.add(QStringLiteral("&Work Phone:"), field(&PatientEntry::wPhone, 20));

    auto* doctors = new QGroupBox(QStringLiteral("Doctors and Hospital"));
    FieldGrid care(doctors);
    // The doctor's name shows under the number; with switch 24 a name typed into the field
    // and Enter looks the number up.
    for (auto [member, label] :
         {std::pair{&PatientEntry::refDoc, QStringLiteral("&Referring Dr.:")},
          std::pair{&PatientEntry::famDoc, QStringLiteral("Famil&y Dr.:")}}) {
        QLineEdit* number = field(member, 6);
        number->installEventFilter(this);
        auto* name = new QLabel;
        m_doctorNames.insert(number, name);
        connect(number, &QLineEdit::textChanged, this,
                guarded(this, [this, number] { showDoctorName(number); }));
        care.add(label, number);
    }
    care.next();
    for (QLabel* name : m_doctorNames) {
        care.add(QString(), name);
    }
    care.add(QStringLiteral("Facility:"), field(&PatientEntry::facilityNum, 4));
    care.add(QStringLiteral("A&dmit Date:"), field(&PatientEntry::admitDate, 10, dateHint));
    care.add(QStringLiteral("Notes:"), field(&PatientEntry::notes, 200), 2);
    m_flag = new QCheckBox(QStringLiteral("Fla&g"));
    care.add(QString(), m_flag);

    // Written by the card validation exchange; shown so the desk sees the last answer.
    auto* check = new QGroupBox(QStringLiteral("Card Validation"));
    FieldGrid checkGrid(check);
    const auto shown = [this](QString PatientEntry::*member) {
        QLineEdit* edit = field(member, 50);
        edit->setReadOnly(true);
        edit->setFocusPolicy(Qt::NoFocus);
        m_cardFields << edit;
        return edit;
    };
    checkGrid.add(QStringLiteral("Checked:"), shown(&PatientEntry::hnCheckDate));
    checkGrid.add(QStringLiteral("Response:"), shown(&PatientEntry::response));
    checkGrid.add(QStringLiteral("Status:"), shown(&PatientEntry::status));
    checkGrid.add(QStringLiteral("Batch:"), shown(&PatientEntry::batchId));

    columns->addWidget(identity, 0, 0);
    columns->addWidget(card, 0, 1);
    columns->addWidget(address, 1, 0);
    columns->addWidget(doctors, 1, 1);
    columns->addWidget(check, 2, 0, 1, 2);
    columns->setRowStretch(3, 1);
    applySwitches();
    return record;
}

QWidget* frmPatients::buildButtons() {
    auto* bar = new QWidget;
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    auto* newButton = new QPushButton(QStringLiteral("&New"));
    auto* saveButton = new QPushButton(QStringLiteral("&Save"));
    m_delete = new QPushButton(QStringLiteral("D&elete Account"));
    auto* closeButton = new QPushButton(QStringLiteral("&Close"));
    m_checkCard = new QPushButton(QStringLiteral("Chec&k Card"));
    m_checkCard->setObjectName(QStringLiteral("checkCard"));
    m_checkCard->setToolTip(QStringLiteral("Ask the province whether this health card is valid"));
    m_checkCard->setVisible(false);  // only where the card check is switched on
    saveButton->setToolTip(QStringLiteral("Ctrl+S"));
    closeButton->setToolTip(QStringLiteral("Esc"));
    connect(newButton, &QPushButton::clicked, this, guarded(this, &frmPatients::newClicked));
    connect(saveButton, &QPushButton::clicked, this, guarded(this, &frmPatients::save));
    connect(m_delete, &QPushButton::clicked, this, guarded(this, &frmPatients::deleteAccount));
    connect(closeButton, &QPushButton::clicked, this, guarded(this, &QWidget::close));
    connect(m_checkCard, &QPushButton::clicked, this, guarded(this, [this] {
                if (m_cardCheck) {
                    const PatientEntry entry = entryOnScreen();
                    m_cardCheck(entry.healthNum, entry.versionCode);
                }
            }));
    for (QPushButton* b : {newButton, saveButton, m_delete, closeButton, m_checkCard}) {
        b->setAutoDefault(false);
    }
    row->addWidget(newButton);
    row->addWidget(m_checkCard);
    row->addStretch();
    row->addWidget(saveButton);
    row->addWidget(m_delete);
    row->addWidget(closeButton);
    return bar;
}

}  // namespace brimsett
