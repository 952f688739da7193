#pragma once

#include "screens/CodeTableEditor.h"

namespace brimsett {

// "OHIP Service Codes": the office's copy of the schedule of benefits, edited by hand and
// refreshed from the ministry's schedule file ("Update Fee Schedules", Ctrl+U).
class frmOHIPCodes : public CodeTableEditor {
    Q_OBJECT

public:
    // startFolder: where the file dialog opens first.
    frmOHIPCodes(Database& db, const SqlLog& log, Prompter& prompter, const MoneyFormat& money,
                 QString startFolder, QWidget* parent = nullptr);

    // Asks for the schedule file, then imports it.
    void chooseScheduleFile();
    // Imports the file under a progress dialog whose Cancel stops the import with nothing
    // written, then reads the grid again. Unsaved edits are saved or dropped first, as the
    // user answers. The import tells its own outcome; true when it imported.
    bool updateFeeSchedules(const QString& fileName);

signals:
    // The folder of a file chosen for import, to open there next time.
    void folderUsed(const QString& folder);

private:
    Database& m_db;
    const SqlLog& m_log;
    QString m_folder;
};

}  // namespace brimsett
