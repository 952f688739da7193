#pragma once

#include "foundation/Money.h"
#include "ministry/ClaimTransfer.h"
#include "screens/RepaintingWait.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <optional>

class QComboBox;
class QLabel;
class QPushButton;

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;
struct Provider;

// What the windows that exchange files with the ministry ("Submit Claims", "Reconcile")
// have in common: the office's parts, the doctor and method choice lists (the method is
// "SubmitMethod", saved at once when changed), the question for the disk folder, the status
// line and Esc closing the window. Each window lays the parts out itself.
class TransferScreen : public QWidget {
    Q_OBJECT

public:
    QString statusLine() const;

    // How the disk folder (the old "A:\") is chosen for a transfer by disk; by default a
    // folder dialog that starts where the last one of the run ended. An empty answer cancels.
    void setDiskFolderChooser(std::function<QString()> choose) {
        m_chooseDiskFolder = std::move(choose);
    }

protected:
    TransferScreen(Database& db, AppSettings& settings, SettingsStore& store, Prompter& prompter,
                   const Clock& clock, const SqlLog& log, MoneyFormat money, QString officeFolder,
                   QWidget* parent);

    // The doctor list ("cboDoctor"), empty until loadDoctors.
    QComboBox* makeDoctorList(QWidget* parent);
    // Every provider, starting at lastDoctor (or the only provider there is), each shown as
    // its ID, " - " and its name as named (by default "Last, First").
    void loadDoctors(const QString& lastDoctor,
                     const std::function<QString(const Provider&)>& named = {});
    // The chosen doctor's ID; empty when none is chosen.
    QString doctorId() const;
    // The method list ("cboMethod"), starting at "SubmitMethod".
    QComboBox* makeMethodList(QWidget* parent);
    TransferMethod method() const;
    // A label whose Alt letter goes to the field.
    static QLabel* labelFor(QWidget* field, const QString& text, QWidget* parent);
    // A button that Enter does not press unless the window says so.
    static QPushButton* button(QWidget* parent, const QString& name, const QString& caption,
                               const QString& tip = {});
    // The status line ("lblStatus"), made by each window where its layout wants it.
    QLabel* makeStatusLine();
    void setStatus(const QString& text);

    // Where a transfer by the chosen method goes: by disk the folder is asked for (the
    // dialog says caption and starts at lastFolder, or the removable media when that is
    // empty, and keeps the answer there). None when the question was cancelled.
    std::optional<TransferPlaces> placesForTransfer(const QString& caption, QString& lastFolder);
    // Where the last disk dialog of a submission ended in this run: claim files and card
    // files go to the same disk.
    static QString& submitDiskFolder();
    // The transfer to those places; its waiting shows in the status line.
    ClaimTransfer transferTo(const TransferPlaces& places);

    Database& m_db;
    AppSettings& m_settings;
    SettingsStore& m_store;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    MoneyFormat m_money;
    QString m_folder;  // the office folder, ending in "/"

    QComboBox* m_doctor = nullptr;
    QComboBox* m_method = nullptr;
    QLabel* m_status = nullptr;

private:
    void methodChanged(int index);

    std::function<QString()> m_chooseDiskFolder;
    RepaintingWait m_statusWait;
};

}  // namespace brimsett
