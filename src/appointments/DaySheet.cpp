#include "appointments/DaySheet.h"

#include "appointments/AppointmentBook.h"
#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "patients/Provider.h"
#include "reports/Report.h"

#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>
#include <numeric>

namespace brimsett::appointments {

namespace {

const QString kTitle = QStringLiteral("Print Appointments");

// What a cell of the sheet shows.
enum class Cell {
    Time,
    Length,
    IdAndName,
    HealthNum,
    Dob,
    Sex,
    RefDoc,
    HealthNumAndDob,
    PhoneAndAddress,
    Blank,
    TaggedNotes,
    AppId,
    PatientId,
    Phone,
    Status,
    Service,
    Diag,
    Notes,
};

struct LayoutColumn {
    const char* caption;
    Cell cell;
};

// A layout: its columns with their printed flags and widths, as ";"-separated lists.
struct Layout {
    QList<LayoutColumn> columns;
    const char* printed;
    const char* widths;
};

const Layout& layoutOf(SheetLayout layout) {
    static const Layout kDefault{{{"Time", Cell::Time},
                                  {"ID & Name", Cell::IdAndName},
                                  {"Health Num", Cell::HealthNum},
                                  {"DOB", Cell::Dob},
                                  {"Sex", Cell::Sex},
                                  {"Ref Doc", Cell::RefDoc}},
                                 "1;1;1;1;1;1",
                                 "100;250;250;150;50;250;"};
    static const Layout kInformation{{{"Time", Cell::Time},
                                      {"ID & Name", Cell::IdAndName},
                                      {"HCN & [DOB]", Cell::HealthNumAndDob},
                                      {"Ph# & [Address]", Cell::PhoneAndAddress},
                                      {" ", Cell::Blank},
                                      {"Notes", Cell::TaggedNotes}},
                                     "1;1;1;1;1;1",
                                     "100;200;180;160;5;350"};
    // Ten columns, four of them kept off the paper: the appointment and patient numbers (for
    // whoever works from the rows), the phone and the notes.
    static const Layout kBilling{{{"Time", Cell::Time},
                                  {"Len.", Cell::Length},
                                  {"AppID", Cell::AppId},
                                  {"Phone", Cell::Phone},
                                  {"PatientID", Cell::PatientId},
                                  {"Service", Cell::Service},
                                  {"Diag", Cell::Diag},
                                  {"Notes", Cell::Notes},
                                  {"Status", Cell::Status},
                                  {"ID & Name", Cell::IdAndName}},
                                 "1;1;0;0;0;1;1;0;1;1",
                                 "100;40;0;160;160;60;100;180;100;100"};
    switch (layout) {
        case SheetLayout::Information:
            return kInformation;
        case SheetLayout::Billing:
            return kBilling;
        case SheetLayout::Default:
            break;
    }
    return kDefault;
}

QStringList listOf(const char* text) {
    return QString::fromLatin1(text).split(QLatin1Char(';'), Qt::SkipEmptyParts);
}

// An appointment with its patient's row, when there is one.
struct SheetRow {
    int time = 0;
    int length = 0;
    int slotType = 0;
    qint64 appId = 0;
    QString patientName;
    QString patientPhone;
    int status = 0;
    QString serviceCode;
    QString diagCode;
    QString notes;
    QString patientId;  // the appointment's, as stored
    bool registered = false;
    QString patientNumber, lastName, firstName, healthNum, versionCode, sex, refDoc, refDocName,
        homePhone, address, city, province;
    QDate dob;
};

QDate dateOf(const QVariant& value) {
    return value.typeId() == QMetaType::QDate
               ? value.toDate()
               : QDate::fromString(value.toString().left(10), Qt::ISODate);
}

// The day's live appointments in the range with their patients and referring doctors, read
// in one statement.
QList<SheetRow> readRows(Database& db, const DaySheetRequest& r, int first, int last) {
    const QString order =
        r.order == SheetOrder::ByName
            ? QStringLiteral(" Order By Coalesce(A.PatientName,'') Asc,A.AppTime Asc,A.AppID Asc")
            : QStringLiteral(" Order By A.AppTime Asc,Coalesce(A.AppLength,0) Desc,A.AppID Asc");
    QSqlQuery q = db.exec(
        QStringLiteral(
            "Select A.AppID As AppID, A.AppTime As AppTime, A.AppLength As AppLength,"
            " A.SlotType As SlotType, A.PatientName As PatientName,"
            " A.PatientPhone As PatientPhone, A.Status As Status, A.ServiceCode As ServiceCode,"
            " A.DiagCode As DiagCode, A.Notes As Notes, A.PatientID As AppPatientID,"
            " P.PatientID As PatientID, P.LName As LName, P.FName As FName,"
            " P.HealthNum As HealthNum, P.VersionCode As VersionCode, P.DOB As DOB,"
            " P.Sex As Sex, P.RefDoc As RefDoc, P.HPhone As HPhone, P.Address As Address,"
            " P.City As City, P.Province As Province, R.LName As RefLName,"
            " R.FName As RefFName"
            " From appointments A Left Join patients P On P.PatientID=A.PatientID"
            " Left Join DoctorsOther R On R.ProviderNum=P.RefDoc"
            " Where A.DoctorID=? And A.AppDate=? And A.AppTime>=? And A.AppTime<=?"
            " And (A.Status Is Null Or A.Status<>?)") +
            order,
        {r.doctorId, r.date, first, last, kStatusCancelled},
        QStringLiteral("reading the day sheet of %1").arg(r.doctorId));
    QList<SheetRow> rows;
    while (q.next()) {
        const QSqlRecord rec = q.record();
        const auto text = [&rec](const char* name) {
            return rec.value(QLatin1String(name)).toString().trimmed();
        };
        SheetRow row;
        row.appId = rec.value(QStringLiteral("AppID")).toLongLong();
        row.time = rec.value(QStringLiteral("AppTime")).toInt();
        row.length = rec.value(QStringLiteral("AppLength")).toInt();
        row.slotType = rec.value(QStringLiteral("SlotType")).toInt();
        row.status = rec.value(QStringLiteral("Status")).toInt();
        row.patientName = text("PatientName");
        row.patientPhone = text("PatientPhone");
        row.serviceCode = text("ServiceCode");
        row.diagCode = text("DiagCode");
        row.notes = text("Notes");
        row.patientId = text("AppPatientID");
        row.registered = !rec.value(QStringLiteral("PatientID")).isNull();
        row.patientNumber = text("PatientID");
        row.lastName = text("LName");
        row.firstName = text("FName");
        row.healthNum = text("HealthNum");
        row.versionCode = text("VersionCode");
        row.dob = dateOf(rec.value(QStringLiteral("DOB")));
        row.sex = text("Sex");
        row.refDoc = text("RefDoc");
        const QString refLast = text("RefLName");
        const QString refFirst = text("RefFName");
        row.refDocName = refLast.isEmpty() || refFirst.isEmpty()
                             ? refLast + refFirst
                             : refLast + QStringLiteral(", ") + refFirst;
        row.homePhone = text("HPhone");
        row.address = text("Address");
        row.city = text("City");
        row.province = text("Province");
        rows << row;
    }
    return rows;
}

QString joined(const QStringList& parts, const QString& separator) {
    QStringList kept;
    for (const QString& p : parts) {
        if (!p.isEmpty()) {
            kept << p;
        }
    }
    return kept.join(separator);
}

QString nameCell(const SheetRow& row) {
    if (!row.registered) {
        return row.patientName;  // a caller not registered (yet) is known by the given name
    }
    return QStringLiteral("[") + row.patientNumber + QStringLiteral("] ") + row.lastName +
           QStringLiteral(", ") + row.firstName;
}

QString statusTag(int status) {
    const QString name = status == 0 ? QString() : StatusName(status);
    return name.isEmpty() ? QString() : QStringLiteral("[") + name + QStringLiteral("] ");
}

QString cellText(Cell cell, const SheetRow& row) {
    switch (cell) {
        case Cell::Time:
            return TimeText(row.time).trimmed();
        case Cell::Length:
            return QString::number(row.length);
        case Cell::IdAndName:
            return nameCell(row);
        case Cell::HealthNum:
            return joined({row.healthNum, row.versionCode}, QStringLiteral(" "));
        case Cell::Dob:
            return datetext::slashed(row.dob);
        case Cell::Sex:
            return row.sex;
        case Cell::RefDoc:
            return row.refDocName.isEmpty() ? row.refDoc : row.refDocName;
        case Cell::HealthNumAndDob: {
            const QString number = joined({row.healthNum, row.versionCode}, QStringLiteral(" "));
            return row.dob.isValid()
                       ? joined({number, QStringLiteral("[") + datetext::slashed(row.dob) +
                                             QStringLiteral("]")},
                                QStringLiteral(" "))
                       : number;
        }
        case Cell::PhoneAndAddress: {
            const QString phone = row.patientPhone.isEmpty() ? row.homePhone : row.patientPhone;
            const QString where =
                joined({row.address, row.city, row.province}, QStringLiteral(", "));
            return where.isEmpty()
                       ? phone
                       : joined({phone, QStringLiteral("[") + where + QStringLiteral("]")},
                                QStringLiteral(" "));
        }
        case Cell::Blank:
            return {};
        case Cell::TaggedNotes:
            return (statusTag(row.status) + row.notes).trimmed();
        case Cell::AppId:
            return QString::number(row.appId);
        case Cell::PatientId:
            return row.patientId;
        case Cell::Phone:
            return row.patientPhone.isEmpty() ? row.homePhone : row.patientPhone;
        case Cell::Status:
            return row.status == 0 ? QString() : StatusName(row.status);
        case Cell::Service:
            return row.serviceCode;
        case Cell::Diag:
            return row.diagCode;
        case Cell::Notes:
            return row.notes;
    }
    return {};
}

QString providerName(Database& db, const QString& doctorId) {
    QSqlQuery q = db.exec(QStringLiteral("Select * From Doctors Where DoctorID=?"), {doctorId},
                          QStringLiteral("reading provider %1").arg(doctorId));
    const QString name = q.next() ? Provider::fromRecord(q.record()).displayName() : QString();
    return name.isEmpty() ? doctorId : name;
}

// A line of the sheet before it becomes cells: an appointment, or an empty slot's time.
struct Line {
    int time = 0;
    int color = 0;
    std::optional<SheetRow> row;
};

}  // namespace

void DaySheetRequest::readSettings(const AppSettings& settings) {
    printOnlyApps = settings.appPrintOnlyApps;
    dontPrintOutside = settings.dontPrintOutside;
    printColor = settings.appPrintColor;
}

QStringList DaySheet::textLines() const {
    QStringList lines;
    for (const QStringList& row : rows) {
        lines << row.join(QLatin1Char('\t'));
    }
    if (!countLine.isEmpty()) {
        lines << countLine;
    }
    return lines;
}

std::optional<DaySheet> daySheet(Database& db, Prompter& prompter, const DaySheetRequest& request) {
    // Appointments outside the shown hours are printed unless the office says not to; empty
    // slots only ever within them.
    const int first = request.dontPrintOutside ? request.firstMinute : 0;
    const int last = request.dontPrintOutside ? request.lastMinute : kMinutesPerDay - 1;
    const qint64 count =
        db.scalar(QStringLiteral("Select Count(*) From appointments Where DoctorID=?"
                                 " And AppDate=? And AppTime>=? And AppTime<=?"
                                 " And (Status Is Null Or Status<>?)"),
                  {request.doctorId, request.date, first, last, kStatusCancelled},
                  QStringLiteral("counting the appointments of %1").arg(request.doctorId))
            .toLongLong();
    if (count == 0) {
        prompter.tell(kTitle, {QStringLiteral("No appointments to print.")}, Icon::Information);
        return std::nullopt;
    }

    const QList<SheetRow> rows = readRows(db, request, first, last);
    const QList<SlotType> types = LoadSlotTypes(db);
    QList<Line> lines;
    for (const SheetRow& row : rows) {
        const std::optional<SlotType> type = findSlotType(types, row.slotType);
        lines << Line{row.time, type ? type->color : 0, row};
    }
    // Empty slots belong to the sheet in time order only: by name they would have no place.
    if (!request.printOnlyApps && request.order == SheetOrder::ByTime) {
        for (const DayLine& slot : dayLines(db, request.doctorId, request.date)) {
            if (!slot.appointment && slot.time >= request.firstMinute &&
                slot.time <= request.lastMinute) {
                lines << Line{slot.time, slot.color, std::nullopt};
            }
        }
        // The appointments come in the sheet's order and the slots by time: a stable sort on
        // the time, appointments first, keeps both.
        std::stable_sort(lines.begin(), lines.end(), [](const Line& x, const Line& y) {
            if (x.time != y.time) {
                return x.time < y.time;
            }
            return x.row.has_value() && !y.row.has_value();
        });
    }

    const Layout& layout = layoutOf(request.layout);
    const QStringList printed = listOf(layout.printed);
    const QStringList widths = listOf(layout.widths);
    QList<Cell> cells;
    DaySheet sheet;
    for (int c = 0; c < layout.columns.size(); ++c) {
        if (printed.value(c) == QLatin1String("1")) {
            cells << layout.columns.at(c).cell;
            sheet.captions << QString::fromLatin1(layout.columns.at(c).caption);
            sheet.widths << widths.value(c).toInt();
        }
    }
    for (const Line& line : lines) {
        QStringList texts;
        for (Cell cell : cells) {
            texts << (line.row             ? cellText(cell, *line.row)
                      : cell == Cell::Time ? TimeText(line.time).trimmed()
                                           : QString());
        }
        sheet.rows << texts;
        if (request.printColor) {
            sheet.rowColors << line.color;
        }
    }
    const QString provider = providerName(db, request.doctorId);
    sheet.title = QStringLiteral("Appointments for ") + provider + QStringLiteral(" on ") +
                  datetext::longDate(request.date);
    sheet.progressCaption = QStringLiteral("Printing appointments For ") + provider +
                            QStringLiteral(" (") + request.doctorId + QStringLiteral(")");
    if (request.layout == SheetLayout::Billing) {
        sheet.countLine = QString::number(rows.size()) + QStringLiteral(" appointment(s).");
    }
    return sheet;
}

reports::Report daySheetReport(const DaySheet& sheet) {
    reports::Report report(sheet.title);
    // The widths are pixels of the book's grid; a Letter page holds about 700 of them upright.
    constexpr int kUpright = 700;
    const int total = std::accumulate(sheet.widths.cbegin(), sheet.widths.cend(), 0);
    report.setLandscape(total > kUpright);
    reports::ReportTable table;
    for (int c = 0; c < sheet.captions.size(); ++c) {
        // A narrow sheet leaves its last column (the names or notes) the rest of the page.
        const bool last = c == sheet.captions.size() - 1;
        table.columns << reports::ReportColumn{
            sheet.captions.at(c), Qt::AlignLeft,
            sheet.widths.value(c) + (last ? std::max(0, kUpright - total) : 0)};
    }
    table.rows = sheet.rows;
    table.rowColors = sheet.rowColors;
    report.addTable(std::move(table));
    if (!sheet.countLine.isEmpty()) {
        report.addParagraph(sheet.countLine);
    }
    return report;
}

}  // namespace brimsett::appointments
