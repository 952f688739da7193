// Times the appointment book of a large office: about a million appointments of 20 doctors
// over ten years, with weekly templates (half the doctors use the default one) and slot
// types. Prints one doctor's day with its template, six doctors' days side by side, and a
// booking with its overlap check: time and statements per operation, then the plan of every
// statement they ran and whether it finds its rows through an index.
#include "BenchOffice.h"
#include "appointments/AppointmentBook.h"
#include "appointments/AppointmentTime.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "foundation/SqlLog.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSet>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>

#include <sqlite3.h>

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
    QSqlQuery type(db.connection());
    type.prepare(
        QStringLiteral("Insert Into apptimeslots (ID, Name, Color, QuickCode, Type, "
                       "DefaultLength, DefaultServiceCode, DefaultDiagCode) "
                       "Values (?,?,?,?,?,?,?,?)"));
    for (int t = 1; t <= kSlotTypes; ++t) {
        for (const QVariant& v :
             {QVariant(t), QVariant(QStringLiteral("Type %1").arg(t)), QVariant(t * 0x101010),
              QVariant(QStringLiteral("T%1").arg(t)), QVariant(t == kSlotTypes ? 1 : 0),
              QVariant(10 + 5 * (t % 4)), QVariant(QStringLiteral("A007A")),
              QVariant(QStringLiteral("799"))}) {
            type.addBindValue(v);
        }
        type.exec();
    }
    QSqlQuery slot(db.connection());
    slot.prepare(
        QStringLiteral("Insert Into apptemplates (AppTempID, DoctorID, Day, "
                       "TemplateTime, TimeSlot) Values (?,?,?,?,?)"));
    int tempId = 0;
    // The default template, then an own one for every even doctor; Monday (2) to Friday (6).
    for (int d = -1; d < kDoctors; d += (d < 0 ? 1 : 2)) {
        for (int day = 2; day <= 6; ++day) {
            for (int s = 0; s < kTemplateSlots; ++s) {
                for (const QVariant& v :
                     {QVariant(++tempId), QVariant(d < 0 ? QStringLiteral("(d)") : doctor(d)),
                      QVariant(day), QVariant(kFirstSlot + s * kSlotStep),
                      QVariant(1 + (s + d + 1) % kSlotTypes)}) {
                    slot.addBindValue(v);
                }
                slot.exec();
            }
        }
    }
    QSqlQuery app(db.connection());
    app.prepare(QStringLiteral(
        "Insert Into appointments (AppID, PatientName, PatientPhone, AppDate, AppTime, AppLength,"
        " SlotType, Notes, Status, PatientID, DoctorID, Deleted) Values "
        "(?,?,?,?,?,?,?,?,?,?,?,0)"));
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
                app.bindValue(0, appId);
                app.bindValue(1, QStringLiteral("Patient %1").arg(appId % 50000));
                app.bindValue(2, QStringLiteral("555-0100"));
                app.bindValue(3, iso);
                app.bindValue(4, kFirstSlot + i * kSlotStep + (i % 5 == 4 ? 5 : 0));
                app.bindValue(5, i % 7 == 3 ? 30 : 15);
                app.bindValue(6, 1 + i % (kSlotTypes - 1));
                app.bindValue(7, i % 3 ? QVariant() : QVariant(QStringLiteral("follow up")));
                app.bindValue(8, i % 11 == 0 ? kStatusCancelled : 1 + i % 6);
                app.bindValue(9, appId % 50000 + 1);
                app.bindValue(10, doc);
                app.exec();
            }
        }
    }
    tx.commit();
}

// Every statement text the engine ran while tracing is on.
int traced(unsigned, void* context, void* statement, void*) {
    static_cast<QSet<QString>*>(context)->insert(
        QString::fromUtf8(sqlite3_sql(static_cast<sqlite3_stmt*>(statement))));
    return 0;
}

struct Timing {
    QList<double> ms;
    qint64 statements = 0;
    QString line(const char* what) const {
        QList<double> sorted = ms;
        std::sort(sorted.begin(), sorted.end());
        double sum = 0;
        for (double m : sorted) {
            sum += m;
        }
        return QStringLiteral(
                   "%1: mean %2 ms, median %3 ms, worst %4 ms over %5 runs, %6 "
                   "statements each")
            .arg(QLatin1String(what))
            .arg(sum / sorted.size(), 0, 'f', 2)
            .arg(sorted.at(sorted.size() / 2), 0, 'f', 2)
            .arg(sorted.last(), 0, 'f', 2)
            .arg(sorted.size())
            .arg(double(statements) / sorted.size(), 0, 'f', 1);
    }
};

template <typename Work>
Timing timed(Database& db, Work work) {
    Timing t;
    const qint64 before = db.statementCount();
    for (int run = 0; run < kRuns; ++run) {
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
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    bench::Office office;
    const QString folder = office.folder();
    Database* db = office.db.get();
    const qint64 built = office.fill([](Database& d) { fill(d); });
    out << "office: " << db->scalar(QStringLiteral("Select Count(*) From appointments")).toInt()
        << " appointments of " << kDoctors << " doctors over " << kYears << " years, "
        << db->scalar(QStringLiteral("Select Count(*) From apptemplates")).toInt()
        << " template slots, built in " << built << " ms\n";
    out.flush();
    db->exec(QStringLiteral("Analyze"));

    // The patients the bookings name.
    db->exec(QStringLiteral("Insert Into patients (PatientID, LName, FName, Province) Select "
                            "AppID, 'Last', 'First',"
                            " 'QC' From appointments Where AppID<=?"),
             {kRuns});

    QSet<QString> statements;
    sqlite3_trace_v2(static_cast<sqlite3*>(db->nativeHandle()), SQLITE_TRACE_STMT, traced,
                     &statements);
    int lines = 0;
    const Timing one = timed(
        *db, [&](int run) { lines += dayLines(*db, doctor(run % kDoctors), dayOf(run)).size(); });
    out << one.line("one doctor's day") << " (" << lines / kRuns << " lines)\n";
    const Timing six = timed(*db, [&](int run) {
        for (int d = 0; d < 6; ++d) {
            dayLines(*db, doctor((run + d) % kDoctors), dayOf(run));
        }
    });
    out << six.line("six doctors' days side by side") << "\n";

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
    out << timed(*db, booking(8 * 60)).line("booking a free time with its overlap check") << "\n";
    out << timed(*db, booking(kFirstSlot)).line("booking over another (double booking, Yes)")
        << "\n";
    sqlite3_trace_v2(static_cast<sqlite3*>(db->nativeHandle()), 0, nullptr, nullptr);

    out << "\nplans of the statements run:\n";
    bool all = true;
    QStringList sorted(statements.begin(), statements.end());
    sorted.sort();
    for (const QString& sql : sorted) {
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
