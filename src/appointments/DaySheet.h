#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {
class Database;
class Prompter;
struct AppSettings;
namespace reports {
class Report;
}
}  // namespace brimsett

// The day sheet: one doctor's appointments of a day, printed in one of three layouts.
namespace brimsett::appointments {

enum class SheetLayout { Default, Information, Billing };
enum class SheetOrder { ByTime, ByName };

struct DaySheetRequest {
    QString doctorId;
    QDate date;
    int firstMinute = 0;  // the shown hours, both ends included
    int lastMinute = 0;
    SheetLayout layout = SheetLayout::Default;
    SheetOrder order = SheetOrder::ByTime;
    // Section "Appointment": "PrintOnlyApps", "DontPrintOutside", "PrintColor".
    bool printOnlyApps = false;
    bool dontPrintOutside = false;
    bool printColor = false;

    // The request's three flags from the settings; the rest stays as given.
    void readSettings(const AppSettings& settings);
};

// What the sheet prints: the title ("Appointments for " provider " on " long date), the
// progress caption, the layout's printed columns and rows, and the closing count of the
// billing layout (empty for the others).
struct DaySheet {
    QString title;
    QString progressCaption;  // "Printing appointments For " provider " (" id ")"
    QStringList captions;     // the printed columns only
    QList<int> widths;        // their widths, as the layout gives them
    QList<QStringList> rows;  // one per printed line, cells as printed
    QList<int> rowColors;     // 0xRRGGBB per row when printing in colour, else empty
    QString countLine;        // billing layout: n " appointment(s)."

    // Rows tab-separated, then the count line where there is one.
    QStringList textLines() const;
};

// The sheet, or none when there is nothing to print ("No appointments to print.", title
// "Print Appointments", told through the prompter). Reads only.
std::optional<DaySheet> daySheet(Database& db, Prompter& prompter, const DaySheetRequest& request);
reports::Report daySheetReport(const DaySheet& sheet);

}  // namespace brimsett::appointments
