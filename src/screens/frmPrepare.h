#pragma once

#include "foundation/Money.h"
#include "ministry/BatchRegister.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

// "Submit Claims": the pending claims of a doctor's billing number become a claim file
// (`cmdStart`), and the batches made so far are listed newest first, each of them to delete
// as a record (`cmdDeleteBatch`), to reverse back to pending, to print (the summary of its
// file, the claims it carries), or to hand over by the method of the choice list. The screen
// only wires BatchPreparation, BatchRegister, batchreports:: and ClaimTransfer.
//
// Keys: Enter moves on through the fields to the Prepare button, which Enter presses; every
// button has its Alt letter; Delete on the list deletes the batch record (asked); Esc closes.
// The screen takes no F-key, so the main menu's F-keys work in it.
class frmPrepare : public QWidget {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Submit Claims");

    frmPrepare(Database& db, AppSettings& settings, SettingsStore& store, Prompter& prompter,
               const Clock& clock, const SqlLog& log, MoneyFormat money, QString officeFolder,
               QWidget* parent = nullptr);

    // The batch whose row is current in the list, as it was listed; none when the list is
    // empty.
    std::optional<BatchRow> selectedBatch() const;
    // Makes the batch's row current; false when it is not listed.
    bool selectBatch(const QString& batchId);
    // The text of the status line under the list.
    QString statusLine() const;

    // How the disk folder (the old "A:\") is chosen for a disk submission; by default a
    // folder dialog that starts where the last one of the run ended. An empty answer cancels.
    void setDiskFolderChooser(std::function<QString()> choose) {
        m_chooseDiskFolder = std::move(choose);
    }

private:
    QWidget* buildPreparePanel();
    QWidget* buildBatchPanel();
    void loadDoctors();
    void reloadBatches(const QString& select = {});
    void updateButtons();
    void setStatus(const QString& text);

    void startClicked();
    void deleteClicked();
    void reverseClicked();
    void summaryClicked();
    void claimsClicked();
    void methodChanged(int index);
    void submitClicked();
    QString chooseDiskFolder();

    Database& m_db;
    AppSettings& m_settings;
    SettingsStore& m_store;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    MoneyFormat m_money;
    QString m_folder;
    BatchRegister m_batches;
    std::vector<BatchRow> m_rows;  // as listed
    std::function<QString()> m_chooseDiskFolder;

    QComboBox* m_doctor = nullptr;
    QLineEdit* m_cutOff = nullptr;
    QLabel* m_startLabel = nullptr;
    QLineEdit* m_start = nullptr;
    QRadioButton* m_byService = nullptr;
    QRadioButton* m_byCreated = nullptr;
    QCheckBox* m_oneProfile = nullptr;
    QPushButton* m_cmdStart = nullptr;
    QLabel* m_progress = nullptr;
    QTreeWidget* m_list = nullptr;
    QPushButton* m_cmdSummary = nullptr;
    QPushButton* m_cmdClaims = nullptr;
    QPushButton* m_cmdReverse = nullptr;
    QPushButton* m_cmdDelete = nullptr;
    QComboBox* m_method = nullptr;
    QPushButton* m_cmdSubmit = nullptr;
    QLabel* m_status = nullptr;
};

}  // namespace brimsett
