#pragma once

#include <QList>
#include <QStringList>

#include <functional>

class QHBoxLayout;
class QTableWidget;
class QWidget;

namespace brimsett::answergrid {

// A read-only grid of text rows under the given captions: whole rows selected, no row
// numbers, the last column taking the spare width.
QTableWidget* make(QWidget* parent, const QStringList& captions);

// Replaces the rows, then sizes every column to what it holds, up to maxColumnChars
// characters, so one long message cannot push the other columns out of sight.
void fill(QTableWidget* grid, const QList<QStringList>& rows, int maxColumnChars = 40);

// The width that shows every column whole.
int fullWidth(const QTableWidget* grid);

// The buttons under an answer's grid: Print ("cmdPrint", Alt+P) runs print, Close
// ("cmdClose") and Esc close the window.
QHBoxLayout* printAndClose(QWidget* window, const std::function<void()>& print);

// The cells of a row, for tests and for copying.
QStringList rowText(const QTableWidget* grid, int row);

}  // namespace brimsett::answergrid
