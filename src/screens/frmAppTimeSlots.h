#pragma once

#include "appointments/AppTemplates.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace brimsett {

class ChoiceDelegate;
class Database;
class Prompter;
class SqlLog;
struct AppSettings;

// "Templates": the slots of a doctor's weekday (or of the default template) before anyone
// books. A slot is inserted with the time and type typed below the list; a listed slot's time
// (F2) or type is changed in its row, and is written at once.
class frmAppTimeSlots : public QDialog {
    Q_OBJECT

public:
    frmAppTimeSlots(Database& db, AppSettings& settings, Prompter& prompter, const SqlLog& log,
                    QWidget* parent = nullptr);

    // The template shown: a doctor number (defaultTemplateDoctor() for the default) and a day
    // 1 (Sunday) to 7.
    void showTemplate(const QString& doctorId, int day);
    // Adds a slot at the time typed, of the type chosen; false when nothing was added.
    bool insertSlot();
    // Deletes the current slot after asking.
    void deleteSlot();
    // The slot types offered and the slots listed, read again (after the slot types were
    // changed).
    void reloadSlotTypes();

private:
    void refreshList(int currentId);
    void rowEdited(QTreeWidgetItem* item, int column);

    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
    QComboBox* m_doctor = nullptr;
    QComboBox* m_day = nullptr;
    QTreeWidget* m_list = nullptr;
    QLineEdit* m_time = nullptr;
    QComboBox* m_type = nullptr;
    QWidget* m_remove = nullptr;
    ChoiceDelegate* m_typeChoices = nullptr;
    QList<appointments::TemplateRow> m_rows;  // as listed
};

}  // namespace brimsett
