#pragma once

#include "ministry/BatchRegister.h"
#include "screens/TransferScreen.h"

#include <QString>

#include <optional>
#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace brimsett {

// "Submit Claims": the pending claims of a doctor's billing number become a claim file
// (`cmdStart`), and the batches made so far are listed newest first, each of them to delete
// as a record (`cmdDeleteBatch`), to reverse back to pending, to print (the summary of its
// file, the claims it carries), or to hand over by the method of the choice list. The screen
// only wires BatchPreparation, BatchRegister, batchreports:: and ClaimTransfer.
//
// Keys: Enter moves on through the fields to the Prepare button, which Enter presses; every
// button has its Alt letter; Delete on the list deletes the batch record (asked); Esc closes.
// The screen takes no F-key, so the main menu's F-keys work in it.
class frmPrepare : public TransferScreen {
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

private:
    QWidget* buildPreparePanel();
    QWidget* buildBatchPanel();
    void reloadBatches(const QString& select = {});
    void updateButtons();

    void startClicked();
    void deleteClicked();
    void reverseClicked();
    void summaryClicked();
    void claimsClicked();
    void submitClicked();

    BatchRegister m_batches;
    std::vector<BatchRow> m_rows;  // as listed

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
    QPushButton* m_cmdSubmit = nullptr;
};

}  // namespace brimsett
