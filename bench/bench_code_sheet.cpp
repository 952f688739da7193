// Times reading and filtering the schedule in its editor's sheet: 7,200 codes, as an office
// holds after an update, read whole, found by code and by words, and one edit saved.
#include "BenchOffice.h"
#include "claims/CodeSheet.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "foundation/SqlLog.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <functional>

using namespace brimsett;

namespace {

struct Best {
    double ms = 1e9;
    double statements = 0;  // per run
};

// The best of five runs, in milliseconds.
Best best(Database& db, const std::function<void()>& run) {
    Best b;
    const qint64 before = db.statementCount();
    for (int i = 0; i < 5; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        b.ms = std::min(b.ms, timer.nsecsElapsed() / 1e6);
    }
    b.statements = (db.statementCount() - before) / 5.0;
    return b;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    bench::Office office;
    QTemporaryDir& dir = office.dir;
    Database* db = office.db.get();
    {
        Transaction transaction(*db);
        bench::Rows rows(*db,
                         QStringLiteral("Insert Into ServiceCodes (ServiceCode, Description, "
                                        "FeeGeneral, FeeSpecialist, FeeAssistant, "
                                        "UnitsAssistant, DateStart, DateTerm, ReqDiagCode, Sex, "
                                        "MinimumAge, MaximumAge)"),
                         12);
        for (int i = 0; i < 7200; ++i) {
            const QString code = QStringLiteral("%1%2")
                                     .arg(QChar('A' + i / 1000))
                                     .arg(i % 1000, 3, 10, QLatin1Char('0'));
            const qint64 fee = 100000 + 2500LL * i;
            rows.add({code, QStringLiteral("Assessment or visit, code ") + code, fee, fee,
                      i % 3 ? 0 : 120400, i % 3 ? 0 : 1, QStringLiteral("2024-04-01"),
                      QStringLiteral("1980-01-01"), i % 2, QStringLiteral("B"), 0, 999});
        }
        rows.flush();
        transaction.commit();
    }
    RecordingPrompter prompter;
    const SqlLog log(OfficePaths(dir.path() + QLatin1Char('/')), false);
    CodeSheet sheet(codetables::serviceCodes(), *db, prompter, log);

    for (const QString& find : {QString(), QStringLiteral("A0"), QStringLiteral("b12"),
                                QStringLiteral("visit"), QStringLiteral("zz")}) {
        const Best read = best(*db, [&] { sheet.load(find); });
        out << QStringLiteral("read \"%1\": %2 rows, best %3 ms\n")
                   .arg(find)
                   .arg(sheet.rowCount())
                   .arg(read.ms, 0, 'f', 1);
        bench::step(out, QStringLiteral("read \"%1\"").arg(find), read.ms, read.statements,
                    QStringLiteral("reading"));
    }
    sheet.load();
    const Best saved = best(*db, [&] {
        sheet.setCell(5, 1, sheet.cell(5, 1) + QLatin1Char('.'));
        sheet.save();
    });
    out << QStringLiteral("one edit saved and all read again: best %1 ms\n")
               .arg(saved.ms, 0, 'f', 1);
    bench::step(out, QStringLiteral("one edit saved"), saved.ms, saved.statements,
                QStringLiteral("save"));
    return prompter.messages().isEmpty() ? 0 : 1;
}
