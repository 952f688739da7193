#include "appointments/SlotTypes.h"

#include "appointments/AppointmentTime.h"
#include "foundation/Database.h"
#include "foundation/NextId.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"

#include <QSqlRecord>

namespace brimsett::appointments {

namespace {

// The table keeps colours with red in the lowest byte; SlotType::color is 0xRRGGBB.
int swapRedBlue(int color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

SlotType fromRow(const QSqlQuery& q) {
    const QSqlRecord r = q.record();
    SlotType t;
    t.id = r.value(QStringLiteral("ID")).toInt();
    t.name = r.value(QStringLiteral("Name")).toString();
    t.description = r.value(QStringLiteral("Description")).toString();
    t.color = swapRedBlue(r.value(QStringLiteral("Color")).toInt());
    t.quickCode = r.value(QStringLiteral("QuickCode")).toString();
    t.type = r.value(QStringLiteral("Type")).toInt();
    t.defaultLength = r.value(QStringLiteral("DefaultLength")).toInt();
    t.defaultServiceCode = r.value(QStringLiteral("DefaultServiceCode")).toString();
    t.defaultDiagCode = r.value(QStringLiteral("DefaultDiagCode")).toString();
    return t;
}

bool isAlphanumeric(const QString& code) {
    for (const QChar c : code) {
        if (!(c.isDigit() || (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
              (c >= QLatin1Char('a') && c <= QLatin1Char('z')))) {
            return false;
        }
    }
    return true;
}

// A shortcut is typed to pick a type by the start of its code, so two codes where one begins
// the other would make the shorter one ambiguous, whichever was saved first.
bool shortcutTaken(const QList<SlotType>& types, const SlotType& type) {
    const QString code = type.quickCode.trimmed();
    for (const SlotType& other : types) {
        if (other.id == type.id || other.quickCode.isEmpty()) {
            continue;
        }
        if (other.quickCode.startsWith(code, Qt::CaseInsensitive) ||
            code.startsWith(other.quickCode, Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

QString lengthProblem(const QString& lengthText) {
    bool ok = false;
    const qint64 length = lengthText.trimmed().toLongLong(&ok);
    if (!ok) {
        return QStringLiteral("Invalid length.");
    }
    if (length <= 0) {
        return QStringLiteral("Length must be greater than zero.");
    }
    if (length > kMinutesPerDay) {
        return QStringLiteral("Length cannot be greater than 1440.");
    }
    return {};
}

}  // namespace

QList<SlotType> LoadSlotTypes(Database& db) {
    QList<SlotType> types;
    QSqlQuery q = db.exec(QStringLiteral("Select * From apptimeslots Order By ID"), {},
                          QStringLiteral("Load Slot Types"));
    while (q.next()) {
        types << fromRow(q);
    }
    return types;
}

std::optional<SlotType> findSlotType(const QList<SlotType>& types, int id) {
    for (const SlotType& t : types) {
        if (t.id == id) {
            return t;
        }
    }
    return std::nullopt;
}

std::optional<SlotType> slotTypeById(Database& db, int id) {
    QSqlQuery q = db.exec(QStringLiteral("Select * From apptimeslots Where ID=?"), {id},
                          QStringLiteral("reading slot type %1").arg(id));
    if (!q.next()) {
        return std::nullopt;
    }
    return fromRow(q);
}

bool isReserved(const SlotType& type) {
    return type.type == kKindReserved;
}

QStringList checkSlotType(Database& db, const SlotType& type, const QString& lengthText) {
    QStringList problems;
    if (type.name.trimmed().isEmpty()) {
        problems << QStringLiteral("Please enter a description for this time slot.");
    }
    const QString code = type.quickCode.trimmed();
    const QList<SlotType> types = LoadSlotTypes(db);
    if (code.isEmpty()) {
        problems << QStringLiteral("Please enter a shortcut for this time slot.");
    } else if (!isAlphanumeric(code)) {
        problems << QStringLiteral("Shortcut must be alphanumeric.");
    } else if (shortcutTaken(types, type)) {
        problems << QStringLiteral("Please choose a different shortcut.");
    }
    if (const QString length = lengthProblem(lengthText); !length.isEmpty()) {
        problems << length;
    }
    // The reserved kind is the program's own: no type becomes one, none stops being one.
    const std::optional<SlotType> saved = type.id > 0 ? findSlotType(types, type.id) : std::nullopt;
    const bool wasReserved = saved && isReserved(*saved);
    if (type.type < kKindAppointment || type.type > kKindReserved) {
        problems << QStringLiteral("Unknown kind of slot: %1.").arg(type.type);
    } else if (isReserved(type) != wasReserved) {
        problems << QStringLiteral("This slot type is reserved.");
    }
    return problems;
}

QStringList saveSlotType(Database& db, const SqlLog& log, SlotType& type,
                         const QString& lengthText) {
    // Checked inside the transaction, so that two computers never save one shortcut twice.
    Transaction transaction(db, QStringLiteral("saving slot type ") + type.name);
    if (QStringList problems = checkSlotType(db, type, lengthText); !problems.isEmpty()) {
        return problems;
    }
    SlotType saved = type;
    saved.name = type.name.trimmed();
    saved.quickCode = type.quickCode.trimmed();
    saved.defaultLength = lengthText.trimmed().toInt();
    saved.defaultServiceCode = type.defaultServiceCode.trimmed();
    saved.defaultDiagCode = type.defaultDiagCode.trimmed();
    if (saved.description.isEmpty()) {
        saved.description = saved.name.left(30);
    }
    using Kind = SqlStatementBuilder::Kind;
    const auto fields = [&saved](SqlStatementBuilder& b) {
        b.addField(QStringLiteral("Name"), saved.name, Kind::Text);
        b.addField(QStringLiteral("Description"), saved.description, Kind::Text);
        b.addField(QStringLiteral("Color"), swapRedBlue(saved.color), Kind::Number);
        b.addField(QStringLiteral("QuickCode"), saved.quickCode, Kind::Text);
        b.addField(QStringLiteral("Type"), saved.type, Kind::Number);
        b.addField(QStringLiteral("DefaultLength"), saved.defaultLength, Kind::Number);
        b.addField(QStringLiteral("DefaultServiceCode"), saved.defaultServiceCode, Kind::Text);
        b.addField(QStringLiteral("DefaultDiagCode"), saved.defaultDiagCode, Kind::Text);
    };
    SqlStatementBuilder b;
    QString logged;
    if (saved.id <= 0) {
        saved.id = int(nextId(db, QStringLiteral("apptimeslots"), QStringLiteral("ID")));
        b.beginInsert(QStringLiteral("apptimeslots"));
        b.addField(QStringLiteral("ID"), saved.id, Kind::Number);
        fields(b);
        const SqlStatementBuilder::Bound bound = b.boundInsert();
        db.exec(bound.sql, bound.values, QStringLiteral("adding slot type ") + saved.name);
        logged = b.finishInsert();
    } else {
        b.beginUpdate(QStringLiteral("apptimeslots"));
        fields(b);
        const SqlStatementBuilder::Bound bound = b.boundUpdate(QStringLiteral("ID=?"), {saved.id});
        const QSqlQuery q =
            db.exec(bound.sql, bound.values, QStringLiteral("saving slot type %1").arg(saved.id));
        if (q.numRowsAffected() == 0) {
            return {QStringLiteral("Slot type %1 no longer exists.").arg(saved.id)};
        }
        logged = b.finishUpdate(QStringLiteral("ID=%1").arg(saved.id));
    }
    transaction.commit();
    log.write(logged);
    type = saved;
    return {};
}

QString untitledSlotTypeName(Database& db) {
    const QList<SlotType> types = LoadSlotTypes(db);
    for (int n = 1;; ++n) {
        const QString name = QStringLiteral("Untitled %1").arg(n);
        bool used = false;
        for (const SlotType& t : types) {
            used = used || t.name.compare(name, Qt::CaseInsensitive) == 0;
        }
        if (!used) {
            return name;
        }
    }
}

bool deleteSlotType(Database& db, Prompter& prompter, const SqlLog& log, int id) {
    const std::optional<SlotType> type = slotTypeById(db, id);
    if (!type) {
        prompter.error({QStringLiteral("Slot type %1 does not exist.").arg(id)});
        return false;
    }
    if (isReserved(*type)) {
        prompter.tell(QStringLiteral("Warning"),
                      {QStringLiteral("This slot type is required."),
                       QStringLiteral("You may not delete it.")},
                      Icon::Warning);
        return false;
    }
    const qint64 appointments =
        db.scalar(QStringLiteral("Select Count(*) From appointments Where SlotType=?"), {id})
            .toLongLong();
    const qint64 templates =
        db.scalar(QStringLiteral("Select Count(*) From apptemplates Where TimeSlot=?"), {id})
            .toLongLong();
    if (!prompter.confirm(QStringLiteral("Confirm Delete"),
                          {QStringLiteral("There are %1 appointments and %2 templates with this "
                                          "type. Pressing Yes will PURGE these appointments. "
                                          "Are you sure?")
                               .arg(appointments)
                               .arg(templates)},
                          Icon::Warning)) {
        return false;
    }
    // In this order, so that no appointment or template is ever left with a type that is gone.
    const QList<std::pair<QString, QString>> purge = {
        {QStringLiteral("Delete From appointments Where SlotType="),
         QStringLiteral("deleting the appointments of slot type %1")},
        {QStringLiteral("Delete From apptemplates Where TimeSlot="),
         QStringLiteral("deleting the templates of slot type %1")},
        {QStringLiteral("Delete From apptimeslots Where ID="),
         QStringLiteral("deleting slot type %1")}};
    {
        Transaction transaction(db, QStringLiteral("deleting slot type %1").arg(id));
        for (const auto& [statement, doing] : purge) {
            db.exec(statement + QLatin1Char('?'), {id}, doing.arg(id));
        }
        transaction.commit();
    }
    for (const auto& [statement, doing] : purge) {
        log.write(statement + QString::number(id));
    }
    return true;
}

}  // namespace brimsett::appointments
