#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {
class Database;
class Prompter;
class SqlLog;
}  // namespace brimsett

// Slot types: the kinds of slot the book and its templates are laid out with (AppTimeSlots).
namespace brimsett::appointments {

// What a slot type's Type value means. Only appointments count in the book's month view;
// blocked time (lunch, meetings) is shown but not counted; reserved types belong to the
// program itself and can be neither chosen as a kind nor deleted.
constexpr int kKindAppointment = 0;
constexpr int kKindBlocked = 1;
constexpr int kKindReserved = 2;

struct SlotType {
    int id = 0;
    QString name;
    QString description;
    int color = 0;  // 0xRRGGBB
    QString quickCode;
    int type = kKindAppointment;
    int defaultLength = 0;
    QString defaultServiceCode;
    QString defaultDiagCode;
};

// Every slot type, by ID.
QList<SlotType> LoadSlotTypes(Database& db);
std::optional<SlotType> findSlotType(const QList<SlotType>& types, int id);
std::optional<SlotType> slotTypeById(Database& db, int id);
bool isReserved(const SlotType& type);

// The problems of a slot type about to be saved, in the order the setup screen checks them,
// at most one per field: description, shortcut, length (lengthText is the length as typed).
// Empty when it may be saved. type.id names the type being edited (0 for a new one) so that
// its own shortcut is not held against it.
QStringList checkSlotType(Database& db, const SlotType& type, const QString& lengthText);

// Checks, then writes the type in one transaction; a new type (id 0) takes the next ID
// inside it and type.id is set. Returns the problems; nothing is written when there are any.
// The statements go to the SQL log after the commit, as do those of a delete.
QStringList saveSlotType(Database& db, const SqlLog& log, SlotType& type,
                         const QString& lengthText);

// The name of a new slot type: "Untitled " and the first number no type's name uses.
QString untitledSlotTypeName(Database& db);

// Deletes a slot type with its appointments and templates, after the warning that counts
// them (default No). A reserved type is refused with a warning. True when it was deleted.
bool deleteSlotType(Database& db, Prompter& prompter, const SqlLog& log, int id);

}  // namespace brimsett::appointments
