#include "appointments/AppTemplates.h"
#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "cli/CliSession.h"
#include "foundation/SqlLog.h"

namespace brimsett {

namespace {

using namespace appointments;

QString colorText(int color) {
    return QStringLiteral("#%1").arg(color, 6, 16, QLatin1Char('0')).toUpper();
}

SqlLog sqlLog(CliSession& session) {
    return SqlLog(session.paths(), session.settings().sqlLogOn());
}

int addSlotType(CliSession& session, const CliArgs& args) {
    SlotType type;
    type.name = args.value(QStringLiteral("name"));
    type.quickCode = args.value(QStringLiteral("shortcut"));
    type.defaultServiceCode = args.value(QStringLiteral("service"));
    type.defaultDiagCode = args.value(QStringLiteral("diag"));
    bool ok = true;
    if (args.isSet(QStringLiteral("kind"))) {
        type.type = args.value(QStringLiteral("kind")).toInt(&ok);
        if (!ok) {
            return args.usageError(
                QStringLiteral("--kind takes a number: 0 appointment, "
                               "1 blocked time"));
        }
    }
    if (args.isSet(QStringLiteral("color"))) {
        const QString rgb = args.value(QStringLiteral("color"));
        type.color = rgb.toInt(&ok, 16);
        if (!ok || rgb.size() != 6) {
            return args.usageError(QStringLiteral("--color takes six hex digits, RRGGBB"));
        }
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const QStringList problems =
        saveSlotType(session.db(), sqlLog(session), type, args.value(QStringLiteral("length")));
    if (!problems.isEmpty()) {
        session.prompter().error(problems);
        return 1;
    }
    session.out() << "Slot type " << type.id << "\n";
    return 0;
}

int listSlotTypes(CliSession& session, const CliArgs&) {
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    for (const SlotType& t : LoadSlotTypes(session.db())) {
        session.out() << QStringList{QString::number(t.id),
                                     t.name,
                                     t.quickCode,
                                     QString::number(t.type),
                                     QString::number(t.defaultLength),
                                     t.defaultServiceCode,
                                     t.defaultDiagCode,
                                     colorText(t.color)}
                             .join(QLatin1Char('\t'))
                      << "\n";
    }
    return 0;
}

bool readId(const CliArgs& args, int& id) {
    bool ok = false;
    id = args.argument(0).toInt(&ok);
    return ok;
}

int deleteSlotTypeCommand(CliSession& session, const CliArgs& args) {
    int id = 0;
    if (!readId(args, id)) {
        return args.usageError(args.argument(0) + QStringLiteral(" is not a slot type number"));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    if (!deleteSlotType(session.db(), session.prompter(), sqlLog(session), id)) {
        return 1;
    }
    session.out() << "Slot type " << id << " deleted\n";
    return 0;
}

// The doctor named by --doctor, or the default template's by --default; empty after a usage
// error, whose status is in status.
QString templateDoctor(const CliArgs& args, int& status) {
    const bool doctor = args.isSet(QStringLiteral("doctor"));
    if (doctor == args.isSet(QStringLiteral("default"))) {
        status = args.usageError(QStringLiteral("give either --doctor ID or --default"));
        return {};
    }
    return doctor ? args.value(QStringLiteral("doctor")).trimmed().toUpper()
                  : defaultTemplateDoctor();
}

bool readDay(const CliArgs& args, int& day) {
    bool ok = false;
    day = args.value(QStringLiteral("day")).toInt(&ok);
    return ok && day >= kFirstDay && day <= kLastDay;
}

const char* const kDayProblem = "--day takes 1 (Sunday) to 7 (Saturday)";

int addTemplateSlot(CliSession& session, const CliArgs& args) {
    int status = 0;
    TemplateSlot slot;
    slot.doctorId = templateDoctor(args, status);
    if (slot.doctorId.isEmpty()) {
        return status ? status : args.usageError(QStringLiteral("--doctor needs an ID"));
    }
    if (!readDay(args, slot.day)) {
        return args.usageError(QLatin1String(kDayProblem));
    }
    const std::optional<int> time = parseTimeText(args.value(QStringLiteral("time")));
    if (!time) {
        return args.usageError(QStringLiteral("'%1' is not a time like 9:30am")
                                   .arg(args.value(QStringLiteral("time"))));
    }
    slot.time = *time;
    bool ok = false;
    slot.slotType = args.value(QStringLiteral("type")).toInt(&ok);
    if (!ok) {
        return args.usageError(QStringLiteral("--type takes a slot type number"));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    if (const QString problem = insertTemplateSlot(session.db(), sqlLog(session), slot);
        !problem.isEmpty()) {
        session.prompter().error({problem});
        return 1;
    }
    session.out() << "Template slot " << slot.id << "\n";
    return 0;
}

int listTemplate(CliSession& session, const CliArgs& args) {
    int status = 0;
    const QString doctor = templateDoctor(args, status);
    if (doctor.isEmpty()) {
        return status ? status : args.usageError(QStringLiteral("--doctor needs an ID"));
    }
    int day = 0;
    if (!readDay(args, day)) {
        return args.usageError(QLatin1String(kDayProblem));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    for (const TemplateRow& row : templateList(session.db(), doctor, day)) {
        session.out() << QStringList{QString::number(row.slot.id), TimeText(row.slot.time),
                                     QString::number(row.slot.slotType), row.typeName,
                                     colorText(row.color)}
                             .join(QLatin1Char('\t'))
                      << "\n";
    }
    return 0;
}

int deleteTemplateCommand(CliSession& session, const CliArgs& args) {
    int id = 0;
    if (!readId(args, id)) {
        return args.usageError(args.argument(0) + QStringLiteral(" is not a template slot number"));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    return deleteTemplateSlot(session.db(), session.prompter(), sqlLog(session), id) ? 0 : 1;
}

CliOption option(const char* name, const char* value, const char* help, bool required = false) {
    return {QString::fromLatin1(name), QString::fromLatin1(value), QString::fromLatin1(help),
            required};
}

const QList<CliOption> kWhoseTemplate = {
    option("doctor", "ID", "the doctor's own template"),
    option("default", "", "the default template, for doctors without their own"),
    option("day", "N", "1 Sunday to 7 Saturday", true)};

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("appt slot-type add"),
        .summary = QStringLiteral("add a slot type and print its number"),
        .options = {option("name", "TEXT", "the name the book shows", true),
                    option("shortcut", "CODE", "letters and digits typed to choose it", true),
                    option("length", "MIN", "default length, 1 to 1440 minutes", true),
                    option("kind", "N", "0 appointment (the default), 1 blocked time"),
                    option("service", "CODE", "default service code"),
                    option("diag", "CODE", "default diagnostic code"),
                    option("color", "RRGGBB", "colour in the book, hex")},
        .details = {QStringLiteral("A refused check prints its messages; nothing is written.")},
        .run = addSlotType,
    }) &&
    cli::add({
        .name = QStringLiteral("appt slot-type list"),
        .summary = QStringLiteral("print the slot types"),
        .details = {QStringLiteral("One line each: number, name, shortcut, kind, length, "
                                   "service, diagnosis, colour, tab-separated.")},
        .run = listSlotTypes,
    }) &&
    cli::add({
        .name = QStringLiteral("appt slot-type delete"),
        .summary = QStringLiteral("delete a slot type with its appointments"),
        .arguments = {{QStringLiteral("ID"), QStringLiteral("the slot type number")}},
        .details = {QStringLiteral("Its appointments and templates are deleted with it, after "
                                   "a question that counts them; --yes answers it.")},
        .run = deleteSlotTypeCommand,
    }) &&
    cli::add({
        .name = QStringLiteral("appt template add"),
        .summary = QStringLiteral("add a slot to a weekly template"),
        .options =
            kWhoseTemplate + QList<CliOption>{option("time", "H:MM(am|pm)", "the start", true),
                                              option("type", "ID", "the slot type", true)},
        .run = addTemplateSlot,
    }) &&
    cli::add({
        .name = QStringLiteral("appt template list"),
        .summary = QStringLiteral("print a weekly template's slots for a day"),
        .options = kWhoseTemplate,
        .details = {QStringLiteral("One line each: number, time, slot type, its name, colour, "
                                   "tab-separated.")},
        .run = listTemplate,
    }) &&
    cli::add({
        .name = QStringLiteral("appt template delete"),
        .summary = QStringLiteral("delete a slot of a weekly template"),
        .arguments = {{QStringLiteral("ID"), QStringLiteral("the template slot number")}},
        .run = deleteTemplateCommand,
    });

}  // namespace

}  // namespace brimsett
