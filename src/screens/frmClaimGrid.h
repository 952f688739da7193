#pragma once

#include "claims/ClaimEntry.h"
#include "foundation/Money.h"

#include <QTableWidget>

#include <functional>

namespace brimsett {

class Clock;
class Prompter;
class ServiceCodeCell;
struct AppSettings;

// The item grid of claim entry: one row per item, "Service Code", "Diag. Code", "# Serv.",
// "Fee", "Service Date". Typing in a cell edits it; Enter commits it and moves on (the
// service date only with switch 4), from a row's last cell to the next row's service code.
// Leaving a service code cell makes rows of what was typed (quick codes, fee codes, several
// at once); a changed number of services prices the row again; premiums follow every change.
// Delete empties the current cell, Ctrl+Delete takes the row out. Empty rows are always left
// below the last item to type into.
class frmClaimGrid : public QTableWidget {
    Q_OBJECT

public:
    enum Column { Code, Diag, NumServ, Fee, Date, kColumns };

    // What pricing needs from the header: the claim type letter and the provider's specialty.
    struct Pricing {
        std::function<QChar()> claimType;
        std::function<QString()> specialty;
    };

    frmClaimGrid(ServiceCodeCell& cells, Pricing pricing, const AppSettings& settings,
                 const Clock& clock, Prompter& prompter, MoneyFormat money,
                 QWidget* parent = nullptr);

    // The rows down to the last one with something in it, empty rows between included (the
    // checks number rows as the grid shows them).
    QList<ItemEntry> rows() const;
    void setRows(const QList<ItemEntry>& rows);
    // Puts the cursor in the service code cell of the first row after the last item.
    void goToFreeRow();
    // Finishes an edit in progress, so that what is typed counts.
    void commitOpenCell();

signals:
    // A line for the window's status line.
    void note(const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    friend class ClaimCellDelegate;

    // Enter: to the next cell of the row, or the next row's service code.
    void advance();
    void cellEdited(QTableWidgetItem* item);
    void codeTyped(int row);
    void numServTyped(int row);
    void applyPremiums();
    ItemEntry rowAt(int row) const;
    void putRow(int row, const ItemEntry& entry);
    void setCell(int row, int column, const QString& text);
    void keepSpareRows();
    void sizeColumns();

    ServiceCodeCell& m_cells;
    Pricing m_pricing;
    const AppSettings& m_settings;
    const Clock& m_clock;
    Prompter& m_prompter;
    MoneyFormat m_money;
    bool m_filling = false;  // cells written by the grid itself are not user edits
};

}  // namespace brimsett
