#pragma once

#include <qnamespace.h>
#include <QString>
#include <QStringList>

#include <initializer_list>
#include <iterator>
#include <optional>
#include <type_traits>

class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;
class QWidget;

namespace brimsett::recordlist {

// Where each row of a record list keeps its record's key.
inline constexpr int kKeyRole = Qt::UserRole;

// The list of records beside a record screen's fields: one row per record, whole rows
// selected, the given column taking the spare width.
QTreeWidget* make(QWidget* parent, const QStringList& headers, int stretchColumn);

// Makes the row whose key is given the current one (none when no row has it), without
// signalling a change: the screen already shows that record.
void select(QTreeWidget* list, const QString& key);

// The row whose key is given; none when no row has it (or the key is empty).
QTreeWidgetItem* rowOf(const QTreeWidget* list, const QString& key);

// Makes the row whose key is given the current one, signalling the change, and scrolls to
// it; false when no row has it.
bool showRow(QTreeWidget* list, const QString& key);

// After the list was filled again: the row of the key stays current, else the first row.
void keepCurrent(QTreeWidget* list, const QString& key);

// The key of the current row; empty when there is none.
QString currentKey(const QTreeWidget* list);

// The record of the current row among the records listed (keyOf gives a record's key);
// none when no row is current.
template <typename Records, typename KeyOf>
auto currentRecord(const QTreeWidget* list, const Records& records, KeyOf keyOf)
    -> std::optional<std::decay_t<decltype(*std::begin(records))>> {
    const QString key = currentKey(list);
    for (const auto& record : records) {
        if (!key.isEmpty() && keyOf(record) == key) {
            return record;
        }
    }
    return std::nullopt;
}

// The buttons that act on a row are enabled only while a row is current.
void enableForRow(const QTreeWidget* list, std::initializer_list<QWidget*> buttons);

// A field of at most maxLength characters, widthInChars wide (0: as wide as the layout
// makes it).
QLineEdit* sizedLine(QWidget* parent, int maxLength, int widthInChars);

}  // namespace brimsett::recordlist
