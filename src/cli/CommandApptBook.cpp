#include "appointments/BookQueries.h"
#include "cli/CliHours.h"
#include "cli/CliSession.h"
#include "foundation/DateText.h"

#include <QRegularExpression>

namespace brimsett {

namespace {

using namespace appointments;

QDate monthOf(const QString& text) {
    static const QRegularExpression form(QStringLiteral("^(\\d{4})/(\\d{2})$"));
    const QRegularExpressionMatch m = form.match(text);
    return m.hasMatch() ? QDate(m.captured(1).toInt(), m.captured(2).toInt(), 1) : QDate();
}

int showMonth(CliSession& session, const CliArgs& args) {
    const QDate month = monthOf(args.argument(1));
    if (!month.isValid()) {
        return args.usageError(QStringLiteral("%1 is not a month YYYY/MM").arg(args.argument(1)));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    for (const MonthDay& day : monthCounts(session.db(), args.argument(0).toUpper(), month)) {
        session.out() << datetext::slashed(day.date) << "\t" << day.count << "\n";
    }
    return 0;
}

int findBook(CliSession& session, const CliArgs& args) {
    const QString text = args.positional().join(QLatin1Char(' '));
    if (text.trimmed().isEmpty()) {
        return args.usageError(QStringLiteral("nothing to find"));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const FindBy by = args.isSet(QStringLiteral("notes")) ? FindBy::Notes : FindBy::Patient;
    const std::optional<QList<FoundAppointment>> found = findAppointments(
        session.db(), session.prompter(), text, by, args.isSet(QStringLiteral("contains")));
    if (!found) {
        return 1;
    }
    for (const FoundAppointment& row : *found) {
        session.out() << row.columns().join(QLatin1Char('\t')) << "\n";
    }
    session.out() << foundCountLine(found->size()) << "\n";
    return 0;
}

int countBook(CliSession& session, const CliArgs& args) {
    const QDate date = datetext::fromSlashed(args.argument(0));
    if (!date.isValid()) {
        return args.usageError(QStringLiteral("%1 is not a date YYYY/MM/DD").arg(args.argument(0)));
    }
    QStringList doctors;
    for (const QString& doctor : args.positional().mid(1)) {
        if (!doctor.trimmed().isEmpty()) {
            doctors << doctor.trimmed().toUpper();
        }
    }
    if (doctors.isEmpty()) {
        return args.usageError(QStringLiteral("Please enter at least one provider."));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const auto hours = hoursOption(session, args);
    if (const int* status = std::get_if<int>(&hours)) {
        return *status;
    }
    const ShownHours& shown = std::get<ShownHours>(hours);
    session.out() << countLine(countDay(session.db(), date, doctors, shown.firstMinute(),
                                        shown.lastMinute()))
                  << "\n";
    return 0;
}

CliOption option(const char* name, const char* value, const char* help) {
    return {QString::fromLatin1(name), QString::fromLatin1(value), QString::fromLatin1(help)};
}

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("appt month"),
        .summary = QStringLiteral("print a doctor's appointments per day of a month"),
        .arguments = {{QStringLiteral("DOCTOR"), QStringLiteral("the doctor")},
                      {QStringLiteral("MONTH"), QStringLiteral("YYYY/MM")}},
        .details = {QStringLiteral("One line per day with appointments: YYYY/MM/DD, tab, how "
                                   "many; slot types of kind 0 (appointments) only.")},
        .run = showMonth,
    }) &&
    cli::add({
        .name = QStringLiteral("appt find"),
        .summary = QStringLiteral("find appointments by patient, name or notes"),
        .arguments = {{QStringLiteral("TEXT"),
                       QStringLiteral("a patient number, a name \"Last, First\", or notes"),
                       CliArgument::Count::OneOrMore}},
        .options = {option("notes", "", "find the text in the notes"),
                    option("contains", "", "names containing the text, not beginning with it")},
        .details = {QStringLiteral("Newest first: number, name, date, time, length, doctor, "
                                   "notes, tab-separated, then how many were found. \"*\" "
                                   "matches any text and \"?\" one character.")},
        .run = findBook,
    }) &&
    cli::add({
        .name = QStringLiteral("appt count"),
        .summary = QStringLiteral("count the appointments of doctors on a day"),
        .arguments = {{QStringLiteral("DATE"), QStringLiteral("YYYY/MM/DD")},
                      {QStringLiteral("DOCTOR"), QStringLiteral("the doctors"),
                       CliArgument::Count::OneOrMore}},
        .options = {option("from", "HOUR", "first hour (8, 8am, 17, 5pm; else the book's)"),
                    option("to", "HOUR", "last hour, counted to its 59th minute")},
        .run = countBook,
    });

}  // namespace

}  // namespace brimsett
