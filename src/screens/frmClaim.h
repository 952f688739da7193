#pragma once

#include "claims/ClaimEntry.h"
#include "claims/ClaimEntryOptions.h"
#include "claims/ServiceCodeCell.h"
#include "foundation/Money.h"
#include "patients/PatientRegister.h"
#include "patients/PatientSearch.h"
#include "patients/Provider.h"

#include <QWidget>

#include <optional>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QStatusBar;
class QTreeWidget;

namespace brimsett {

namespace appointments {
struct BillingStart;
}

class ActionRegistry;
class frmClaimGrid;
class frmClaimPending;

// "Claims": where the office bills. The provider and the patient on top (a number loads the
// patient, a name or a health number finds one), the program and its extras, the items
// below, and the pending claims in the lower half. Ctrl+S saves, Ctrl+N starts a new claim,
// Esc closes; leaving unsaved changes asks first. A window of its own beside the main menu.
class frmClaim : public QWidget {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Claims");

    frmClaim(Database& db, AppSettings& settings, const ClaimEntryOptions& options,
             Prompter& prompter, const Clock& clock, const SqlLog& log, MoneyFormat money,
             ActionRegistry& actions, QWidget* parent = nullptr);
    ~frmClaim() override;

    ClaimEntry entryOnScreen() const;
    // A pending claim on the screen for editing, after asking about unsaved changes; false
    // when the user stayed or the claim is no longer pending.
    bool openClaim(qint64 claimId);
    bool save();
    // An empty claim; the provider, the program's default and the last SLI are kept.
    void startNew();
    // A new claim for a visit billed from the appointment book, after asking about unsaved
    // changes: its patient loaded as if typed, its provider, and its codes in the first row on
    // the visit's date, priced, the cursor on that row for the desk to check and save. Saving
    // marks the visit billed; leaving without saving leaves it as it was. False when the user
    // stayed on the claim before or the patient could not be read.
    bool startFromAppointment(const appointments::BillingStart& start);
    // Offers to save changes that would otherwise be lost; false when the user cancels.
    bool mayLeaveCurrent();
    QString statusLine() const;

    frmClaimGrid* grid() const { return m_grid; }
    frmClaimPending* pending() const { return m_pending; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    struct Binding {
        QString ClaimEntry::*member;
        QLineEdit* edit;
    };

    QWidget* buildHeader();
    QWidget* buildButtons();
    QLineEdit* field(QString ClaimEntry::*member, int maxLength, int widthInChars,
                     const QString& hint = {});
    void orderTabs();
    void loadProviders();
    void loadPayers();
    void putOnScreen(const ClaimEntry& entry);
    void putFields(const ClaimEntry& entry);
    bool hasChanges() const;
    void focusStart();
    void setStatus(const QString& text);
    QString specialty() const;
    void programChanged();
    void openPayers();
    void newClicked();
    void claimDeleted(qint64 claimId);

    // The patient number field: a number, a name or a health number.
    void patientEntered();
    bool showPatient(qint64 id);
    void offerPatients(const PatientMatches& found);
    void patientPicked();
    // On from the patient: the admission date with switch 2, else the first free item.
    void moveOnFromPatient();

    Database& m_db;
    AppSettings& m_settings;
    ClaimEntryOptions m_options;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    MoneyFormat m_money;
    ActionRegistry& m_actions;
    ServiceCodeCell m_cells;
    PatientRegister m_register;
    PatientSearch m_search;
    QList<Provider> m_providers;

    ClaimEntry m_base;                // what the screen does not show (claim number, AC flag)
    ClaimEntry m_shown;               // the claim as put on the screen, to see changes
    std::optional<qint64> m_patient;  // the patient whose fields were put on the screen
    QString m_shownVersion;           // the version code as it came from the register or claim

    std::vector<Binding> m_bindings;
    QComboBox* m_provider = nullptr;
    QLineEdit* m_patientId = nullptr;
    QLabel* m_patientName = nullptr;
    QLineEdit* m_admitDate = nullptr;
    QComboBox* m_program = nullptr;
    QComboBox* m_payer = nullptr;
    QPushButton* m_payers = nullptr;
    QComboBox* m_sli = nullptr;
    QCheckBox* m_manualReview = nullptr;
    QTreeWidget* m_pick = nullptr;
    frmClaimGrid* m_grid = nullptr;
    frmClaimPending* m_pending = nullptr;
    QStatusBar* m_status = nullptr;
};

}  // namespace brimsett
