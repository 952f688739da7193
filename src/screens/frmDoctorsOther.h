#pragma once

#include "patients/ReferringDoctor.h"
#include "patients/ReferringDoctorRegister.h"

#include <QDialog>
#include <QHash>

class QComboBox;
class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace brimsett {

class Database;
class DbError;
class Prompter;
class SqlLog;
struct AppSettings;

class EnterMovesOn;

// "Referring Doctors": a search box with the doctors it finds, and the chosen doctor's
// fields. Leaving a changed doctor asks whether to save it first.
class frmDoctorsOther : public QDialog {
    Q_OBJECT

public:
    frmDoctorsOther(Database& db, const AppSettings& settings, const SqlLog& log,
                    Prompter& prompter, QWidget* parent = nullptr);

    // Shows the doctor with this billing number, or a new doctor with the number filled in
    // when there is none. False when the user chose to stay on unsaved changes.
    bool showNumber(const QString& providerNum);
    // The billing number of the doctor on screen as stored; empty for a new one.
    QString shownNumber() const { return m_savedNum; }

    void reject() override;

private:
    QWidget* fieldsPanel();
    QLineEdit* lineFor(ReferringDoctor::Field field, int widthInChars);
    void search();
    void selectInList(const QString& providerNum);
    void listRowChanged(QTreeWidgetItem* current, QTreeWidgetItem* previous);
    void newClicked();
    bool saveClicked();
    void deleteClicked();
    bool leaveShown();
    void showOnFields(const ReferringDoctor& doctor, const QString& savedNum);
    ReferringDoctor fromFields() const;
    bool changed() const;
    void fail(const QString& doing, const DbError& e);

    Database& m_db;
    const AppSettings& m_settings;
    Prompter& m_prompter;
    ReferringDoctorRegister m_register;
    EnterMovesOn* m_enter = nullptr;
    QLineEdit* m_find = nullptr;
    QTreeWidget* m_list = nullptr;
    QLabel* m_more = nullptr;
    QHash<ReferringDoctor::Field, QLineEdit*> m_lines;
    QComboBox* m_specialty = nullptr;
    ReferringDoctor m_shown;  // as stored (or as started for a new doctor)
    QString m_savedNum;       // empty for a new doctor
};

}  // namespace brimsett
