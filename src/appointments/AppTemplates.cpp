#include "appointments/AppTemplates.h"

#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "foundation/Database.h"
#include "foundation/NextId.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlText.h"

namespace brimsett::appointments {

namespace {

QString timeProblem(int time) {
    return time >= 0 && time < kMinutesPerDay
               ? QString()
               : QStringLiteral("A time must lie between 12:00 am and 11:59 pm.");
}

QString typeProblem(Database& db, int slotType) {
    return slotTypeById(db, slotType)
               ? QString()
               : QStringLiteral("Slot type %1 does not exist.").arg(slotType);
}

QString goneProblem(int appTempId) {
    return QStringLiteral("Template slot %1 no longer exists.").arg(appTempId);
}

// "Update apptemplates Set COLUMN=value Where AppTempID=id", run and logged.
QString setColumn(Database& db, const SqlLog& log, int appTempId, const char* column, int value) {
    const QString set = QStringLiteral("Update apptemplates Set %1=").arg(QLatin1String(column));
    const QString where = QStringLiteral(" Where AppTempID=");
    Transaction transaction(db, QStringLiteral("changing template slot %1").arg(appTempId));
    if (QLatin1String(column) == QLatin1String("TimeSlot")) {
        if (const QString problem = typeProblem(db, value); !problem.isEmpty()) {
            return problem;
        }
    }
    const QSqlQuery q =
        db.exec(set + QStringLiteral("?") + where + QStringLiteral("?"), {value, appTempId},
                QStringLiteral("changing template slot %1").arg(appTempId));
    if (q.numRowsAffected() == 0) {
        return goneProblem(appTempId);
    }
    transaction.commit();
    log.write(set + QString::number(value) + where + QString::number(appTempId));
    return {};
}

}  // namespace

int templateDay(const QDate& date) {
    return date.dayOfWeek() % 7 + 1;
}

QList<TemplateSlot> templateRows(Database& db, const QString& doctorId, int day) {
    QList<TemplateSlot> rows;
    QSqlQuery q = db.exec(QStringLiteral("Select AppTempID, DoctorID, Day, TemplateTime, TimeSlot "
                                         "From apptemplates Where DoctorID=? And Day=? "
                                         "Order By TemplateTime Is Null Desc, TemplateTime, "
                                         "AppTempID"),
                          {doctorId, day}, QStringLiteral("reading the template of ") + doctorId);
    while (q.next()) {
        rows << TemplateSlot{q.value(0).toInt(), q.value(1).toString(), q.value(2).toInt(),
                             q.value(3).toInt(), q.value(4).toInt()};
    }
    return rows;
}

QList<TemplateSlot> templateRowsOf(Database& db, const QStringList& doctorIds,
                                   const QList<int>& days) {
    if (doctorIds.isEmpty() || days.isEmpty()) {
        return {};
    }
    QStringList doctors = doctorIds;
    doctors << defaultTemplateDoctor();
    QVariantList values;
    for (int day : days) {
        values << day;
    }
    for (const QString& id : doctors) {
        values << id;
    }
    const auto marks = [](qsizetype n) {
        QStringList list;
        list.fill(QStringLiteral("?"), n);
        return list.join(QLatin1Char(','));
    };
    QList<TemplateSlot> rows;
    QSqlQuery q = db.exec(QStringLiteral("Select AppTempID, DoctorID, Day, TemplateTime, TimeSlot "
                                         "From apptemplates Where Day In (%1) And DoctorID In (%2) "
                                         "Order By TemplateTime Is Null Desc, TemplateTime, "
                                         "AppTempID")
                              .arg(marks(days.size()), marks(doctors.size())),
                          values, QStringLiteral("reading the templates of the shown days"));
    while (q.next()) {
        rows << TemplateSlot{q.value(0).toInt(), q.value(1).toString(), q.value(2).toInt(),
                             q.value(3).toInt(), q.value(4).toInt()};
    }
    return rows;
}

QList<TemplateSlot> templateFrom(const QList<TemplateSlot>& rows, const QString& doctorId,
                                 int day) {
    const auto of = [&rows, day](const QString& id) {
        QList<TemplateSlot> picked;
        for (const TemplateSlot& slot : rows) {
            if (slot.day == day && slot.doctorId.compare(id, Qt::CaseInsensitive) == 0) {
                picked << slot;
            }
        }
        return picked;
    };
    QList<TemplateSlot> own = of(doctorId);
    return own.isEmpty() && doctorId != defaultTemplateDoctor() ? of(defaultTemplateDoctor()) : own;
}

QList<TemplateSlot> templateFor(Database& db, const QString& doctorId, int day) {
    QList<TemplateSlot> rows = templateRows(db, doctorId, day);
    if (rows.isEmpty() && doctorId != defaultTemplateDoctor()) {
        rows = templateRows(db, defaultTemplateDoctor(), day);
    }
    return rows;
}

QList<TemplateRow> templateList(Database& db, const QString& doctorId, int day) {
    const QList<SlotType> types = LoadSlotTypes(db);
    QList<TemplateRow> list;
    for (const TemplateSlot& slot : templateRows(db, doctorId, day)) {
        TemplateRow row{slot, {}, 0};
        if (const std::optional<SlotType> type = findSlotType(types, slot.slotType)) {
            row.typeName = type->name;
            row.color = type->color;
        }
        list << row;
    }
    return list;
}

QString insertTemplateSlot(Database& db, const SqlLog& log, TemplateSlot& slot) {
    if (slot.day < kFirstDay || slot.day > kLastDay) {
        return QStringLiteral("A day must be 1 (Sunday) to 7 (Saturday).");
    }
    if (const QString problem = timeProblem(slot.time); !problem.isEmpty()) {
        return problem;
    }
    QString doctorId = slot.doctorId.trimmed();
    if (doctorId.isEmpty()) {
        return QStringLiteral("Doctor ID must be entered.");
    }
    Transaction transaction(db, QStringLiteral("adding a template slot for ") + doctorId);
    if (doctorId != defaultTemplateDoctor()) {
        // Kept as the doctor's number is spelled, whatever case it was typed in.
        const QVariant stored =
            db.scalar(QStringLiteral("Select DoctorID From Doctors Where Upper(DoctorID)=?"),
                      {doctorId.toUpper()});
        if (!stored.isValid()) {
            return QStringLiteral("Doctor %1 does not exist.").arg(doctorId);
        }
        doctorId = stored.toString();
    }
    if (const QString problem = typeProblem(db, slot.slotType); !problem.isEmpty()) {
        return problem;
    }
    const int id = int(nextId(db, QStringLiteral("apptemplates"), QStringLiteral("AppTempID")));
    db.exec(QStringLiteral("Insert Into apptemplates (AppTempID, DoctorID, Day, TemplateTime, "
                           "TimeSlot) Values (?, ?, ?, ?, ?)"),
            {id, doctorId, slot.day, slot.time, slot.slotType},
            QStringLiteral("adding a template slot for ") + doctorId);
    transaction.commit();
    log.write(QStringLiteral("Insert Into apptemplates (AppTempID,DoctorID,Day,TemplateTime,"
                             "TimeSlot) Values(%1,%2,%3,%4,%5)")
                  .arg(id)
                  .arg(sqltext::quoteValue(doctorId))
                  .arg(slot.day)
                  .arg(slot.time)
                  .arg(slot.slotType));
    slot.id = id;
    slot.doctorId = doctorId;
    return {};
}

QString setTemplateTime(Database& db, const SqlLog& log, int appTempId, int time) {
    if (const QString problem = timeProblem(time); !problem.isEmpty()) {
        return problem;
    }
    return setColumn(db, log, appTempId, "TemplateTime", time);
}

QString setTemplateType(Database& db, const SqlLog& log, int appTempId, int slotType) {
    return setColumn(db, log, appTempId, "TimeSlot", slotType);
}

bool deleteTemplateSlot(Database& db, Prompter& prompter, const SqlLog& log, int appTempId) {
    if (!prompter.confirm(QStringLiteral("Confirm Delete"),
                          {QStringLiteral("Are you sure you want to"),
                           QStringLiteral("delete this time slot?")})) {
        return false;
    }
    const QString statement = QStringLiteral("Delete From apptemplates Where AppTempID=");
    Transaction transaction(db, QStringLiteral("deleting template slot %1").arg(appTempId));
    const QSqlQuery q = db.exec(statement + QLatin1Char('?'), {appTempId},
                                QStringLiteral("deleting template slot %1").arg(appTempId));
    if (q.numRowsAffected() == 0) {
        prompter.error({goneProblem(appTempId)});
        return false;
    }
    transaction.commit();
    log.write(statement + QString::number(appTempId));
    return true;
}

}  // namespace brimsett::appointments
