#pragma once

#include "foundation/Money.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace brimsett {

// One editable column of a code table: how it is stored, shown and typed.
struct CodeColumn {
    enum class Kind {
        Text,     // as typed, blanks around it trimmed
        Code,     // text stored in capitals
        Money,    // an amount, "#,##0.00"
        Integer,  // a 16-bit whole number
        Long,     // a 32-bit whole number
        Date,     // "YYYY/MM/DD"
        YesNo     // a check box; the cell text is "1" or "0"
    };

    QString name;     // the table's column
    QString caption;  // the grid's header
    Kind kind = Kind::Text;
    int maxLength = 0;         // Text and Code: the characters the column holds
    int width = 8;             // in average characters, for the grid
    QStringList choices = {};  // when not empty, the only texts a Code may hold
    QString hint = {};         // the header's tool tip
    QString initial = {};      // the cell text of a new row

    bool isNumber() const {
        return kind == Kind::Money || kind == Kind::Integer || kind == Kind::Long;
    }
};

// A code table as its editor sees it. Columns not described here (kept by the table for
// other parts of the program) are never written by the editor.
struct CodeTable {
    QString table;
    QString title;    // the editor's window title
    QString rowWord;  // "service code": what one row is called in messages
    QList<CodeColumn> columns;
    int keyColumn = 0;          // unique without regard to case; required
    int descriptionColumn = 1;  // searched together with the key

    const CodeColumn& key() const { return columns.at(keyColumn); }
    int columnOf(const QString& name) const;

    // A stored value as the grid's cell text: money "#,##0.00" (all four decimals when it
    // has them, so that nothing stored is hidden), dates "YYYY/MM/DD", yes/no "1" or "0",
    // NULL empty.
    QString cellOf(int column, const QVariant& stored, const MoneyFormat& money) const;
    // What the user typed, tidied as it is committed to the cell: blanks trimmed, codes in
    // capitals, an amount or date that reads in the cell's own form. Text that does not read
    // is kept as typed, so that the save can quote it back.
    QString tidied(int column, const QString& typed, const MoneyFormat& money) const;

    // The value a cell text is stored as (null for an empty cell), or the problem with it
    // ("Fee is not an amount: "12..5"."). Lengths and choices are checked too.
    struct Stored {
        QVariant value;
        QString problem;
    };
    Stored storedOf(int column, const QString& cell, const MoneyFormat& money) const;
};

// The code tables the office edits by hand.
namespace codetables {

const CodeTable& serviceCodes();        // ServiceCodes, the schedule of benefits
const CodeTable& serviceCodesDirect();  // ServiceCodesDirect, the office's private fees
const CodeTable& diagCodes();
const CodeTable& explCodes();
const CodeTable& quickServCodes();
const CodeTable& quickDiagCodes();
const CodeTable& quickCityCodes();
const CodeTable& quickFacCodes();

}  // namespace codetables
}  // namespace brimsett
