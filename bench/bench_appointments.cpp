// Times the appointment book of a large office: about a million appointments of 20 doctors
// over ten years, with weekly templates (half the doctors use the default one) and slot
// types, and 50,000 patients. Prints one doctor's day with its template, six doctors' days
// side by side and laid out for painting, a month's counts, a booking with its overlap check,
// finds by a name's beginning and by a part of it, and a day sheet to PDF: time and
// statements per operation, then the plan of every statement they ran (a find by a part of a
// name reads the patients whole and is left out) and whether it finds its rows through an
// index.
#include "BenchOffice.h"
#include "appointments/AppointmentBook.h"
#include "appointments/AppointmentTime.h"
#include "appointments/BookQueries.h"
#include "appointments/DayLayout.h"
#include "appointments/DaySheet.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "foundation/SqlLog.h"
#include "reports/Report.h"
#include "reports/ReportPrinter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

using namespace brimsett;
using namespace brimsett::appointments;

namespace {

constexpr int kDoctors = 20;
constexpr int kYears = 10;
constexpr int kPerDay = 19;         // appointments of a doctor's working day
constexpr int kFirstSlot = 540;     // 9:00 am
constexpr int kSlotStep = 20;       // a template slot every 20 minutes
constexpr int kTemplateSlots = 24;  // 9:00 am to 4:40 pm
constexpr int kSlotTypes = 8;
constexpr int kRuns = 50;
const QDate kFirstDay(2016, 12, 1);

QString doctor(int d) {
    return QStringLiteral("%1").arg(d + 1, 2, 10, QLatin1Char('0'));
}
bool workday(const QDate& day) {
    return day.dayOfWeek() <= 5;
}

void fill(Database& db) {
    Transaction tx(db);
    {
        bench::Rows types(db,
                          QStringLiteral("Insert Into apptimeslots (ID, Name, Color, QuickCode, "
                                         "Type, DefaultLength, DefaultServiceCode, "
                                         "DefaultDiagCode)"),
                          8);
        for (int t = 1; t <= kSlotTypes; ++t) {
            types.add({t, QStringLiteral("Type %1").arg(t), t * 0x101010,
                       QStringLiteral("T%1").arg(t), t == kSlotTypes ? 1 : 0, 10 + 5 * (t % 4),
                       QStringLiteral("A007A"), QStringLiteral("799")});
        }
    }
    {
        bench::Rows templateSlots(
            db,
            QStringLiteral("Insert Into apptemplates (AppTempID, DoctorID, Day, "
                           "TemplateTime, TimeSlot)"),
            5);
        int tempId = 0;
        // The default template, then an own one for every even doctor; Monday (2) to Friday (6).
        for (int d = -1; d < kDoctors; d += (d < 0 ? 1 : 2)) {
            for (int day = 2; day <= 6; ++day) {
                for (int s = 0; s < kTemplateSlots; ++s) {
                    templateSlots.add({++tempId, d < 0 ? QStringLiteral("(d)") : doctor(d), day,
                                       kFirstSlot + s * kSlotStep, 1 + (s + d + 1) % kSlotTypes});
                }
            }
        }
    }
    bench::Rows apps(db,
                     QStringLiteral("Insert Into appointments (AppID, PatientName, PatientPhone, "
                                    "AppDate, AppTime, AppLength, SlotType, Notes, Status, "
                                    "PatientID, DoctorID, Deleted)"),
                     12);
    qint64 appId = 0;
    const QDate last = kFirstDay.addYears(kYears);
    for (QDate day = kFirstDay; day < last; day = day.addDays(1)) {
        if (!workday(day)) {
            continue;
        }
        const QString iso = day.toString(Qt::ISODate);
        for (int d = 0; d < kDoctors; ++d) {
            const QString doc = doctor(d);
            for (int i = 0; i < kPerDay; ++i) {
                ++appId;
                apps.add({appId, QStringLiteral("Patient %1").arg(appId % 50000),
                          QStringLiteral("555-0100"), iso,
                          kFirstSlot + i * kSlotStep + (i % 5 == 4 ? 5 : 0), i % 7 == 3 ? 30 : 15,
                          1 + i % (kSlotTypes - 1),
                          i % 3 ? QVariant() : QVariant(QStringLiteral("follow up")),
                          i % 11 == 0 ? kStatusCancelled : 1 + i % 6, appId % 50000 + 1, doc, 0});
            }
        }
    }
    apps.flush();
    tx.commit();
}

struct Timing {
    QList<double> ms;
    qint64 statements = 0;
    void print(QTextStream& out, const char* what, const QString& more = {}) const {
        QList<double> sorted = ms;
        std::sort(sorted.begin(), sorted.end());
        double sum = 0;
        for (double m : sorted) {
            sum += m;
        }
        const double mean = sum / sorted.size();
        const double each = double(statements) / sorted.size();
        out << QStringLiteral(
                   "%1: mean %2 ms, median %3 ms, worst %4 ms over %5 runs, %6 "
                   "statements each")
                   .arg(QLatin1String(what))
                   .arg(mean, 0, 'f', 2)
                   .arg(sorted.at(sorted.size() / 2), 0, 'f', 2)
                   .arg(sorted.last(), 0, 'f', 2)
                   .arg(sorted.size())
                   .arg(each, 0, 'f', 1)
            << more << "\n";
        // The median: a step of a millisecond is at the mercy of the other work on the computer.
        bench::step(out, QLatin1String(what) + QStringLiteral(" (median)"),
                    sorted.at(sorted.size() / 2), each, QStringLiteral("run"));
    }
};

template <typename Work>
Timing timed(Database& db, Work work, int runs = kRuns) {
    Timing t;
    const qint64 before = db.statementCount();
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        work(run);
        t.ms << timer.nsecsElapsed() / 1e6;
    }
    t.statements = db.statementCount() - before;
    return t;
}

// A workday some years into the book, different for each run.
QDate dayOf(int run) {
    QDate day = kFirstDay.addDays(1500 + run * 37);
    while (!workday(day)) {
        day = day.addDays(1);
    }
    return day;
}

}  // namespace

int main(int argc, char** argv) {
    // The day sheet paints its pages: the GUI application, with no window to show.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QGuiApplication app(argc, argv);
    QTextStream out(stdout);
    bench::Office office;
    const QString folder = office.folder();
    Database* db = office.db.get();
    const qint64 built = office.fill([](Database& d) { fill(d); });
    out << "office: " << db->scalar(QStringLiteral("Select Count(*) From appointments")).toInt()
        << " appointments of " << kDoctors << " doctors over " << kYears << " years, "
        << db->scalar(QStringLiteral("Select Count(*) From apptemplates")).toInt()
        << " template slots, built in " << built << " ms on " << bench::engine(*db) << "\n";
    out.flush();
    db->exec(QStringLiteral("Analyze"));

    // The patients the bookings name.
    db->exec(QStringLiteral("Insert Into patients (PatientID, LName, FName, Province) Select "
                            "AppID, 'Last', 'First',"
                            " 'QC' From appointments Where AppID<=?"),
             {kRuns + 1});
    // The rest of the 50,000 patients the bookings name, for the finds: "Name52" and on.
    db->exec(QStringLiteral("Insert Into patients (PatientID, LName, FName, Province) Select "
                            "AppID, 'Name' || AppID, 'First', 'ON' From appointments"
                            " Where AppID>? And AppID<=50000"),
             {kRuns + 1});
    db->exec(QStringLiteral("Analyze"));

    int lines = 0;
    const Timing one = timed(
        *db, [&](int run) { lines += dayLines(*db, doctor(run % kDoctors), dayOf(run)).size(); });
    one.print(out, "one doctor's day", QStringLiteral(" (%1 lines)").arg(lines / kRuns));
    const auto sixDays = [&](int run) {
        for (int d = 0; d < 6; ++d) {
            dayLines(*db, doctor((run + d) % kDoctors), dayOf(run));
        }
    };
    const Timing six = timed(*db, sixDays);
    six.print(out, "six doctors' days side by side");
    // What the book's day view needs before it paints: the six columns read at once, as the
    // screen reads them, and each column's lines placed in lanes.
    const auto dayView = [&](int run) {
        QList<DayKey> keys;
        for (int d = 0; d < 6; ++d) {
            keys << DayKey{doctor((run + d) % kDoctors), dayOf(run)};
        }
        for (const QList<DayLine>& column : dayLinesOf(*db, keys)) {
            placeLines(column);
        }
    };
    timed(*db, dayView).print(out, "six providers' day view ready to paint");
    const auto month = [&](int run) { monthCounts(*db, doctor(run % kDoctors), dayOf(run)); };
    timed(*db, month).print(out, "month counts of one provider");

    const SqlLog log{OfficePaths(folder), true};
    RecordingPrompter prompter;
    AppointmentBook book(*db, prompter, log);
    const auto booking = [&](int time) {
        return [&, time](int run) {
            DetailsInput in;
            in.doctorId = doctor(run % kDoctors);
            in.date = dayOf(run).toString(QStringLiteral("yyyy/MM/dd"));
            in.time = TimeText(time);
            in.length = QStringLiteral("15");
            in.slotType = QStringLiteral("1");
            in.patientId = QString::number(run + 1);
            in.status = 1;
            prompter.script({Answer::Yes});
            if (!book.save(in)) {
                out << "booking refused: " << prompter.last().text() << "\n";
            }
            prompter.clear();
        };
    };
    timed(*db, booking(8 * 60)).print(out, "booking a free time with its overlap check");
    timed(*db, booking(kFirstSlot)).print(out, "booking over another (double booking, Yes)");

    // A name of about a dozen patients (Name1234 and Name12340 to Name12349), a few hundred
    // appointments.
    qsizetype found = 0;
    const auto find = [&](bool contains) {
        return [&, contains](int run) {
            const QString name = QString::number(1000 + run * 173 % 3000);
            found += findAppointments(
                         *db, prompter,
                         contains ? QStringLiteral("ame") + name : QStringLiteral("Name") + name,
                         FindBy::Patient, contains)
                         ->size();
        };
    };
    timed(*db, find(false))
        .print(out, "find by name, starts with", QStringLiteral(" (%1 found)").arg(found / kRuns));
    found = 0;
    constexpr int kContainsRuns = 11;
    timed(*db, find(true), kContainsRuns)
        .print(out, "find by name, contains",
               QStringLiteral(" (%1 found)").arg(found / kContainsRuns));

    // A busy day of 60 appointments (7:00 am on, every 10 minutes) on a Saturday of its own,
    // printed as a PDF in the information layout, the widest.
    const QDate busy(2025, 3, 1);
    db->exec(QStringLiteral("Insert Into appointments (AppID, PatientName, PatientPhone, AppDate,"
                            " AppTime, AppLength, SlotType, Notes, Status, PatientID, DoctorID,"
                            " Deleted) Select AppID+9000000, 'Name' || AppID || ', First',"
                            " '555-0100', ?, 420+(AppID-100)*10, 10, 1, 'follow up', 1, AppID,"
                            " '01', 0 From appointments Where AppID>=100 And AppID<160"),
             {busy});
    DaySheetRequest sheetRequest;
    sheetRequest.doctorId = doctor(0);
    sheetRequest.date = busy;
    sheetRequest.firstMinute = 7 * 60;
    sheetRequest.lastMinute = 17 * 60 + 59;
    sheetRequest.layout = SheetLayout::Information;
    const QString pdf = folder + QStringLiteral("/daysheet.pdf");
    int pages = 0;
    qsizetype printed = 0;
    const auto daySheetPdf = [&](int) {
        const std::optional<DaySheet> sheet = daySheet(*db, prompter, sheetRequest);
        if (!sheet) {
            out << "day sheet refused: " << prompter.last().text() << "\n";
            return;
        }
        printed = sheet->rows.size();
        pages =
            reports::ReportPrinter(daySheetReport(*sheet), reports::ReportStyle()).writePdf(pdf);
    };
    timed(*db, daySheetPdf)
        .print(out, "day sheet of 60 appointments to PDF",
               QStringLiteral(" (%1 rows, %2 pages)").arg(printed).arg(pages));

    // The statements, gathered untimed on a day of their own: a server's trace is its log.
    bench::StatementTrace trace(*db);
    trace.start();
    dayView(kRuns);
    month(kRuns);
    find(false)(kRuns);
    booking(8 * 60)(kRuns);
    booking(kFirstSlot)(kRuns);
    daySheet(*db, prompter, sheetRequest);
    const QStringList statements = trace.stop();

    out << "\nplans of the statements run:\n";
    bool all = true;
    for (const QString& sql : statements) {
        if (sql.startsWith(QLatin1String("Select"), Qt::CaseInsensitive) ||
            sql.startsWith(QLatin1String("Update"), Qt::CaseInsensitive)) {
            // The slot types are read whole by design: a few dozen rows at most.
            all = bench::explain(*db, {}, sql, out, {QStringLiteral("apptimeslots")}) && all;
        } else {
            out << "(no plan) " << sql << "\n";
        }
    }
    out << (all ? "every query uses an index\n" : "SOME QUERY DOES NOT USE AN INDEX\n");
    return all ? 0 : 1;
}
