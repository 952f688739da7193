#include "appointments/DaySheet.h"
#include "cli/CliHours.h"
#include "cli/CliSession.h"
#include "foundation/DateText.h"
#include "foundation/FileModes.h"
#include "reports/Report.h"
#include "reports/ReportPrinter.h"

namespace brimsett {

namespace {

using namespace appointments;

std::optional<SheetLayout> layoutNamed(const QString& name) {
    if (name.isEmpty() || name == QLatin1String("default")) {
        return SheetLayout::Default;
    }
    if (name == QLatin1String("information")) {
        return SheetLayout::Information;
    }
    if (name == QLatin1String("billing")) {
        return SheetLayout::Billing;
    }
    return std::nullopt;
}

int printDaySheet(CliSession& session, const CliArgs& args) {
    DaySheetRequest request;
    request.doctorId = args.argument(0).toUpper();
    request.date = datetext::fromSlashed(args.argument(1));
    if (!request.date.isValid()) {
        return args.usageError(QStringLiteral("%1 is not a date YYYY/MM/DD").arg(args.argument(1)));
    }
    const std::optional<SheetLayout> layout = layoutNamed(args.value(QStringLiteral("layout")));
    if (!layout) {
        return args.usageError(QStringLiteral("--layout is default, information or billing"));
    }
    request.layout = *layout;
    request.order = args.isSet(QStringLiteral("by-name")) ? SheetOrder::ByName : SheetOrder::ByTime;
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const auto hours = hoursOption(session, args);
    if (const int* status = std::get_if<int>(&hours)) {
        return *status;
    }
    request.firstMinute = std::get<ShownHours>(hours).firstMinute();
    request.lastMinute = std::get<ShownHours>(hours).lastMinute();
    const AppSettings& settings = session.settings();
    request.readSettings(settings);
    const std::optional<DaySheet> sheet = daySheet(session.db(), session.prompter(), request);
    if (!sheet) {
        return 0;  // nothing to print, and the prompter said so
    }
    for (const QString& line : sheet->textLines()) {
        session.out() << line << "\n";
    }
    if (args.isSet(QStringLiteral("pdf"))) {
        const QString path = args.value(QStringLiteral("pdf"));
        const reports::ReportPrinter printer(daySheetReport(*sheet),
                                             reports::ReportStyle::fromSettings(settings));
        if (printer.writePdf(path) == 0) {
            return fail(QStringLiteral("%1 could not be written").arg(path));
        }
        // A file that was there before keeps its mode when overwritten.
        filemodes::makePrivate(path);
    }
    return 0;
}

CliOption option(const char* name, const char* value, const char* help) {
    return {QString::fromLatin1(name), QString::fromLatin1(value), QString::fromLatin1(help)};
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("appt daysheet"),
    .summary = QStringLiteral("print a doctor's day sheet, tab-separated, or as a PDF"),
    .arguments = {{QStringLiteral("DOCTOR"), QStringLiteral("the doctor")},
                  {QStringLiteral("DATE"), QStringLiteral("the day, YYYY/MM/DD")}},
    .options = {option("layout", "NAME", "default, information or billing"),
                option("by-name", nullptr, "in the order of the names (else by time)"),
                option("pdf", "FILE", "also write the sheet as a PDF file"),
                option("from", "HOUR", "first hour (8, 8am, 17, 5pm; else the book's)"),
                option("to", "HOUR", "last hour, printed whole (else the book's)")},
    .details = {QStringLiteral("The settings' PrintOnlyApps, DontPrintOutside and PrintColor "
                               "apply as when the sheet is printed from the book.")},
    .paints = true,
    .run = printDaySheet,
});

}  // namespace

}  // namespace brimsett
