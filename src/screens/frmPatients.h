#pragma once

#include "patients/PatientEntry.h"
#include "patients/PatientRegister.h"
#include "patients/PatientSearch.h"

#include <QHash>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace brimsett {
class EnterMovesOn;
}

namespace brimsett {

// "Patients": finds, shows, adds, changes and deletes patients. A window of its own beside
// the main menu, so that sibling programs can bring it forward on a patient.
class frmPatients : public QWidget {
    Q_OBJECT

public:
    frmPatients(Database& db, const AppSettings& settings, Prompter& prompter, const Clock& clock,
                const SqlLog& log, QWidget* parent = nullptr);

    // Shows the stored patient; false (and nothing changed) when there is none.
    bool showPatient(qint64 id);
    // An empty form for a new patient, with the given fields already filled.
    void startNew(const PatientEntry& prefill = {});
    // Offers to save changes that would otherwise be lost; false when the user cancels.
    bool mayLeaveCurrent();
    // The search list is filled from what is typed in the find box.
    void find();

    // With a card check, "Check Card" asks it for the number and version code on the screen.
    using CardCheck = std::function<void(const QString& healthNum, const QString& versionCode)>;
    void setCardCheck(CardCheck check);
    // An answer was stored for this health number: the patient on the screen, when it is the
    // one, is shown again; unsaved typing is kept and only the answer's fields change.
    void cardAnswered(const QString& healthNum);

signals:
    void patientSaved(qint64 id);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    enum FindBy { ByName, ByHealthNumber, ByPhone, ById };

    struct Binding {
        QString PatientEntry::*member;
        QLineEdit* edit;
    };

    QWidget* buildSearch();
    QWidget* buildRecord();
    QWidget* buildButtons();
    QLineEdit* field(QString PatientEntry::*member, int maxLength, const QString& hint = {});

    PatientEntry entryOnScreen() const;
    void putOnScreen(const PatientEntry& entry);
    void idTyped(const QString& text);
    void idEntered();
    void openChosen();
    bool save();
    bool hasChanges() const;
    void deleteAccount();
    void newClicked();
    void healthNumberLeft();
    void checkHealthNumber();
    void provinceChanged();
    void applySwitches();
    void showDoctorName(QLineEdit* number);
    // A name typed where a doctor's number goes is looked up; true when the key was used.
    bool pickDoctor(QLineEdit* number);

    Database& m_db;
    const AppSettings& m_settings;
    Prompter& m_prompter;
    const SqlLog& m_log;
    const Clock& m_clock;
    PatientRegister m_register;
    PatientSearch m_search;

    std::optional<qint64> m_storedId;  // none while a new patient is on the screen
    PatientEntry m_shown;              // what was put on the screen, to see changes

    EnterMovesOn* m_enter = nullptr;
    std::vector<Binding> m_bindings;
    QComboBox* m_findBy = nullptr;
    QLineEdit* m_findText = nullptr;
    QTreeWidget* m_results = nullptr;
    QLabel* m_resultNote = nullptr;
    QLineEdit* m_id = nullptr;
    QLineEdit* m_lName = nullptr;
    QLineEdit* m_healthNum = nullptr;
    QLineEdit* m_province = nullptr;
    QLabel* m_provinceName = nullptr;
    QLabel* m_healthNote = nullptr;  // what is wrong with the health number typed
    QCheckBox* m_flag = nullptr;
    QLabel* m_state = nullptr;
    QPushButton* m_delete = nullptr;
    QPushButton* m_checkCard = nullptr;
    CardCheck m_cardCheck;
    QList<QLineEdit*> m_cardFields;
    QHash<QLineEdit*, QLabel*> m_doctorNames;  // referring and family doctor fields
};

}  // namespace brimsett
