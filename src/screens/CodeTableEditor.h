#pragma once

#include "claims/CodeSheet.h"

#include <QDialog>

class QBoxLayout;
class QLabel;
class QLineEdit;
class QModelIndex;
class QTableView;
class QTimer;

namespace brimsett {

class CodeTableModel;
class Database;
class Prompter;
class SqlLog;

// A code table in a grid, edited in place and saved together. Keys:
//   F3 the find box (Enter there filters at once and goes to the grid, Down goes to the grid)
//   typing in a cell edits it, Enter commits it and moves to the next cell, Space ticks a box
//   Insert or Ctrl+N a new row, Delete removes the selected rows (asked, default No)
//   Ctrl+S saves, Esc closes (asking "Save changes?" when there are unsaved edits)
class CodeTableEditor : public QDialog {
    Q_OBJECT

public:
    CodeTableEditor(const CodeTable& table, Database& db, const SqlLog& log, Prompter& prompter,
                    const MoneyFormat& money, QWidget* parent = nullptr);

    const CodeSheet& sheet() const { return m_sheet; }
    QTableView* grid() const { return m_grid; }
    QLineEdit* findBox() const { return m_find; }

    // Reads the rows the typed text finds (saving or dropping unsaved edits first, as the
    // user answers); false when the user chose to stay on the edits.
    bool applyFind(const QString& text);
    // A new row at the end, its key cell being edited.
    void addRow();
    // The rows of the selection (or the current row), after a question whose default is No.
    void removeSelectedRows();
    bool save();
    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    // Saves, drops or keeps unsaved edits, as the user answers "Save changes?".
    bool leaveChanges();
    // Reads the rows again with the same find text, keeping the cursor on the same key.
    void reload();
    Prompter& prompter() { return m_prompter; }
    // Where a screen adds its own buttons, before Close.
    QBoxLayout* buttonRow() const { return m_buttons; }

private:
    void sizeColumns();
    void commitOpenCell();
    void showState();
    void goToKey(const QString& key, int column);
    void findTyped();

    CodeSheet m_sheet;
    Prompter& m_prompter;
    CodeTableModel* m_model = nullptr;
    QLineEdit* m_find = nullptr;
    QTimer* m_findDelay = nullptr;
    QTableView* m_grid = nullptr;
    QLabel* m_count = nullptr;
    QBoxLayout* m_buttons = nullptr;
};

}  // namespace brimsett
