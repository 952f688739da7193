#pragma once

#include "ministry/ThirdPartyRegister.h"

#include <QDialog>
#include <QHash>

class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace brimsett {

class Database;
class DbError;
class EnterMovesOn;
class Prompter;
class SqlLog;

// "Third Party": the payers of third party claims in a list beside the chosen payer's
// fields. Leaving a changed payer asks whether to save it first; a quick code typed into
// the city is replaced by its city when the field is left.
class frmThirdParty : public QDialog {
    Q_OBJECT

public:
    frmThirdParty(Database& db, Prompter& prompter, const SqlLog& log, QWidget* parent = nullptr);

    // Shows the payer with this number. False when the user chose to stay on unsaved
    // changes or there is no such payer.
    bool showPayer(qint64 id);
    // The number of the payer on screen; 0 for a new one.
    qint64 shownId() const { return m_savedId; }

    void reject() override;

signals:
    // A payer was saved or deleted: payer lists elsewhere are out of date.
    void payersChanged();

private:
    QWidget* fieldsPanel();
    void refreshList();
    void listRowChanged(QTreeWidgetItem* current, QTreeWidgetItem* previous);
    void newClicked();
    bool saveClicked();
    void deleteClicked();
    void cityLeft();
    void markMandatory();
    bool leaveShown();
    void showOnFields(const ThirdParty& payer);
    ThirdParty fromFields() const;
    bool changed() const;
    void fail(const QString& doing, const DbError& e);

    Prompter& m_prompter;
    ThirdPartyRegister m_register;
    EnterMovesOn* m_enter = nullptr;
    QTreeWidget* m_list = nullptr;
    QHash<ThirdParty::Field, QLineEdit*> m_lines;
    QHash<ThirdParty::Field, QLabel*> m_labels;
    ThirdParty m_shown;  // as stored (or empty for a new payer)
    qint64 m_savedId = 0;
};

}  // namespace brimsett
