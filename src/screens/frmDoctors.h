#pragma once

#include "patients/Provider.h"
#include "patients/ProviderRegister.h"

#include <QDialog>
#include <QHash>

class QComboBox;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace brimsett {

class Database;
class DbError;
class Prompter;
class SqlLog;
struct AppSettings;

class EnterMovesOn;

// "Providers": the office's billing doctors listed on the left, the chosen one's fields on
// the right. Leaving a changed provider asks whether to save it first.
class frmDoctors : public QDialog {
    Q_OBJECT

public:
    frmDoctors(Database& db, AppSettings& settings, const SqlLog& log, Prompter& prompter,
               QWidget* parent = nullptr);

    // Shows the stored provider (ID in any case); false when there is none, or when the
    // user chose to stay on unsaved changes.
    bool showProvider(const QString& doctorId);
    // The Doctor ID of the provider on screen as stored; empty for a new one.
    QString shownDoctorId() const { return m_savedId; }

    void reject() override;

signals:
    void referringDoctorsRequested();

private:
    QWidget* fieldsPanel();
    QLineEdit* lineFor(Provider::Field field, int widthInChars);
    void reloadList();
    void selectInList(const QString& doctorId);
    void listRowChanged(QTreeWidgetItem* current, QTreeWidgetItem* previous);
    void newClicked();
    bool saveClicked();
    void deleteClicked();
    // The first provider of the list, or a new one when there is none; nothing is asked.
    void showFirst();
    // True when the user may move on: nothing changed, the change saved, or thrown away.
    bool leaveShown();
    void showOnFields(const Provider& provider, const QString& savedId);
    Provider fromFields() const;
    bool changed() const;
    void fail(const QString& doing, const DbError& e);

    Database& m_db;
    Prompter& m_prompter;
    ProviderRegister m_register;
    EnterMovesOn* m_enter = nullptr;
    QTreeWidget* m_list = nullptr;
    QHash<Provider::Field, QLineEdit*> m_lines;
    QComboBox* m_specialty = nullptr;
    QComboBox* m_office = nullptr;
    QPushButton* m_delete = nullptr;
    Provider m_shown;   // as stored (or blank for a new provider)
    QString m_savedId;  // empty for a new provider
};

}  // namespace brimsett
