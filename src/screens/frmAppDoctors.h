#pragma once

#include "appointments/AppColumns.h"

#include <QDialog>

class QTreeWidget;

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// "Book Columns": the columns of the book's day grid, which show and print, how wide and
// how aligned, in the order dragged (or moved with Ctrl+Up and Ctrl+Down). Saved whole.
class frmAppDoctors : public QDialog {
    Q_OBJECT

public:
    frmAppDoctors(Database& db, Prompter& prompter, const SqlLog& log, QWidget* parent = nullptr);

    // The columns as the grid holds them, in its order.
    QList<appointments::GridColumn> columns() const;
    // Moves the current row up (-1) or down (+1).
    void moveCurrent(int step);
    bool save();

    void reject() override;

signals:
    void columnsSaved();

private:
    void fill(const QList<appointments::GridColumn>& columns);

    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
    QTreeWidget* m_grid = nullptr;
    QList<appointments::GridColumn> m_shown;  // as loaded or last saved
};

}  // namespace brimsett
