#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

namespace brimsett {
class Database;
class Prompter;
class SqlLog;
}  // namespace brimsett

// Weekly templates: the slots a doctor's day is laid out with before anyone books (AppTemplates).
namespace brimsett::appointments {

// The doctor number under which the default template is kept; doctors without a template of
// their own for a weekday use it. It cannot be a real doctor number, which has no brackets.
inline QString defaultTemplateDoctor() {
    return QStringLiteral("(d)");
}
// How the default template is named in lists.
inline QString defaultTemplateName() {
    return QStringLiteral("(Default)");
}

// Day numbers: 1 Sunday, 2 Monday ... 7 Saturday.
constexpr int kFirstDay = 1;
constexpr int kLastDay = 7;
int templateDay(const QDate& date);

struct TemplateSlot {
    int id = 0;  // AppTempID
    QString doctorId;
    int day = 0;
    int time = 0;  // minutes since midnight
    int slotType = 0;
};

// A template row as the setup list shows it, with its slot type's name and colour (empty and
// 0 when the type is gone).
struct TemplateRow {
    TemplateSlot slot;
    QString typeName;
    int color = 0;
};

// The doctor's own rows for the weekday by TemplateTime, or the default template's when the
// doctor has none for that day.
QList<TemplateSlot> templateFor(Database& db, const QString& doctorId, int day);
// Exactly the rows kept under doctorId (defaultTemplateDoctor() for the default) and day.
QList<TemplateSlot> templateRows(Database& db, const QString& doctorId, int day);
QList<TemplateRow> templateList(Database& db, const QString& doctorId, int day);
// The rows of the doctors (and of the default template) for the weekdays, in one reading, for
// templateFrom to pick from.
QList<TemplateSlot> templateRowsOf(Database& db, const QStringList& doctorIds,
                                   const QList<int>& days);
// What templateFor gives, taken from rows read by templateRowsOf.
QList<TemplateSlot> templateFrom(const QList<TemplateSlot>& rows, const QString& doctorId, int day);

// Each returns an empty text when done, else the reason nothing was written: a time outside
// the day, a day outside 1..7, an unknown slot type or doctor, or a row that is gone. Each
// change is one transaction, written to the SQL log after its commit.
// A new row takes the next AppTempID inside the transaction; slot.id is set.
QString insertTemplateSlot(Database& db, const SqlLog& log, TemplateSlot& slot);
QString setTemplateTime(Database& db, const SqlLog& log, int appTempId, int time);
QString setTemplateType(Database& db, const SqlLog& log, int appTempId, int slotType);
// Asks first (default No). True when the row was deleted.
bool deleteTemplateSlot(Database& db, Prompter& prompter, const SqlLog& log, int appTempId);

}  // namespace brimsett::appointments
