#pragma once

#include "appointments/SlotTypes.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// "Slot Types": the kinds of slot the book is laid out with, in a list beside the chosen
// type's fields. The setup checks are shown all at once when it is saved; leaving a changed
// type asks whether to save it first.
class frmAppSetup : public QDialog {
    Q_OBJECT

public:
    frmAppSetup(Database& db, Prompter& prompter, const SqlLog& log, QWidget* parent = nullptr);

    // Shows the type with this ID; false when the user stayed on unsaved changes or there is
    // no such type.
    bool showType(int id);
    int shownId() const { return m_shown.id; }
    bool save();
    void newType();
    void deleteType();
    // The colour the fields hold (0xRRGGBB); the colour button sets it through QColorDialog.
    void setColor(int color);

    void reject() override;

signals:
    // A type was saved or deleted: lists of slot types elsewhere are out of date.
    void slotTypesChanged();

private:
    void refreshList();
    void listRowChanged(QTreeWidgetItem* current);
    void kindChosen();
    void chooseColor();
    bool leaveShown();
    void showOnFields(const appointments::SlotType& type);
    appointments::SlotType fromFields() const;
    bool changed() const;

    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
    QTreeWidget* m_list = nullptr;
    QLineEdit* m_name = nullptr;
    QLineEdit* m_shortcut = nullptr;
    QComboBox* m_kind = nullptr;
    QLineEdit* m_length = nullptr;
    QPushButton* m_color = nullptr;
    QLineEdit* m_service = nullptr;
    QLineEdit* m_diag = nullptr;
    int m_colorValue = 0;
    appointments::SlotType m_shown;  // as stored, or the new type as first shown
    QString m_shownLength;
};

}  // namespace brimsett
