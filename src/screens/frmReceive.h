#pragma once

#include "ministry/AnswerReader.h"
#include "screens/TransferScreen.h"

#include <QString>

#include <functional>
#include <optional>

class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QTableWidget;
class QTreeWidget;

namespace brimsett {

// "Reconcile": fetches the ministry's answers for a doctor by the method of the choice
// list, lists the answer files waiting in a folder (the office's "Download" folder, or the
// disk last fetched from), and reads the chosen one: its faults go to the error list, and
// the answer is shown as it is: a remittance's report in the print preview, a batch edit
// report in frmViewBatchEdit, an error report in frmViewError. With "WILL reconcile" the
// reading writes the answer into the office's claims. The screen only wires ClaimTransfer,
// waitingFiles, readAnswer and answerreports::.
//
// Keys: Enter on the list reads the file; Delete deletes it (asked); every button has its
// Alt letter (Alt+A the list); Esc closes.
class frmReceive : public TransferScreen {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Reconcile");

    frmReceive(Database& db, AppSettings& settings, SettingsStore& store, Prompter& prompter,
               const Clock& clock, const SqlLog& log, MoneyFormat money, QString officeFolder,
               QWidget* parent = nullptr);

    // The folder whose answer files are listed, ending in "/".
    QString listedFolder() const { return m_listFolder; }
    // The file whose row is current, as listed; none when the list is empty.
    std::optional<WaitingFile> selectedFile() const;
    // Makes the file's row current; false when it is not listed.
    bool selectFile(const QString& fileName);

    // How a file is opened in a text editor (by default the system's own for the file);
    // false when it could not be.
    void setFileOpener(std::function<bool(const QString& path)> open) {
        m_openFile = std::move(open);
    }

private:
    QWidget* buildFetchRow();
    QWidget* buildFilePanel();
    QWidget* buildErrorPanel();
    void reloadFiles(const QString& select = {});
    void updateButtons();
    void showReconcileChoice();

    void doctorChanged(int index);
    void receiveClicked();
    // Reads the chosen file and shows what it says (Read, or Enter on the list).
    void LoadData();
    void editClicked();
    void deleteClicked();
    void showAnswer(const ReceivedAnswer& answer);

    QString m_listFolder;
    QList<WaitingFile> m_files;  // as listed
    std::function<bool(const QString&)> m_openFile;

    QPushButton* m_cmdReceive = nullptr;
    QGroupBox* m_filePanel = nullptr;
    QTreeWidget* m_list = nullptr;
    QPushButton* m_cmdRead = nullptr;
    QPushButton* m_cmdEdit = nullptr;
    QPushButton* m_cmdDelete = nullptr;
    QCheckBox* m_reconcile = nullptr;
    QLabel* m_progress = nullptr;
    QTableWidget* m_errors = nullptr;
};

}  // namespace brimsett
