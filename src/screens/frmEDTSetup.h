#pragma once

#include "ministry/EdtParams.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SqlLog;
struct AppSettings;

// "EDT Setup": each provider's transfer login (user ID, password, mode) beside the list of
// providers, and the general dial-up settings below. Save writes the shown login and the
// general settings in one go; leaving changes unsaved asks first.
class frmEDTSetup : public QDialog {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("EDT Setup");

    frmEDTSetup(Database& db, AppSettings& settings, Prompter& prompter, const Clock& clock,
                const SqlLog& log, const QString& officeFolder, QWidget* parent = nullptr);

    // Shows this provider's login; false when the user stayed on unsaved changes or there is
    // no such provider.
    bool showDoctor(const QString& doctorId);
    QString shownDoctor() const { return m_doctorId; }

    void reject() override;

private:
    QWidget* loginPanel();
    QWidget* generalPanel();
    QWidget* hostPanel();
    void listRowChanged(QTreeWidgetItem* current);
    void loadGeneral();
    void loadLogin();
    bool saveClicked();
    bool changed() const;
    bool leaveShown();
    QMap<QChar, QString> generalFromFields() const;
    void describePort();

    Database& m_db;
    AppSettings& m_settings;
    Prompter& m_prompter;
    const SqlLog& m_log;
    EdtParams m_params;
    QTreeWidget* m_list = nullptr;
    QLineEdit* m_userId = nullptr;
    QLineEdit* m_password = nullptr;
    QLabel* m_passwordChanged = nullptr;
    QLineEdit* m_mode = nullptr;
    QLabel* m_modeChanged = nullptr;
    QLineEdit* m_phone = nullptr;
    QComboBox* m_port = nullptr;   // editable: the ports found, or any device typed
    QLabel* m_portNote = nullptr;  // what the chosen port is
    QComboBox* m_speed = nullptr;
    QLineEdit* m_timeOut = nullptr;
    QMap<QChar, QLineEdit*> m_host;  // the DataPac and GONet settings; empty shows the default
    QString m_secretShown;           // the network password as it could be read

    QString m_doctorId;
    EdtLogin m_login;                     // as stored
    QMap<QChar, QString> m_general;       // as stored
    QMap<QChar, QString> m_generalShown;  // as first shown (a default filled in)
};

}  // namespace brimsett
