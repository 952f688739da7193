// Times the import of the ministry's schedule of benefits master file: once into an empty
// office database, then several times into the database that already holds it (the usual
// case, which must stay well under a second). Without the samples folder a made-up file of
// 7,200 codes in the long layout stands in for it.
#include "BenchOffice.h"
#include "claims/SobImport.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "foundation/SqlLog.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>

using namespace brimsett;

namespace {

QString madeUpFile(const QString& folder) {
    const QString name = folder + QStringLiteral("/made-up-sob.txt");
    QFile f(name);
    if (!f.open(QIODevice::WriteOnly)) {
        return {};
    }
    for (int i = 0; i < 7200; ++i) {
        const QString code = QStringLiteral("%1%2")
                                 .arg(QChar('A' + i / 1000))
                                 .arg(i % 1000, 3, 10, QLatin1Char('0'));
        const qint64 fee = 100000 + 2500LL * i;
        const qint64 assistant = (i % 3) * 120400;
        QString line = code + QStringLiteral("20120401") +
                       (i % 10 ? QStringLiteral("99999999") : QStringLiteral("20130400"));
        for (const qint64 amount : {fee, assistant, fee, assistant, assistant}) {
            line += QStringLiteral("%1").arg(amount, 11, 10, QLatin1Char('0'));
        }
        f.write(line.toLatin1() + "\r\n");
    }
    return name;
}

double timed(SobImport& import, const QString& file, int* processed) {
    QElapsedTimer timer;
    timer.start();
    const SobImport::Result result = import.run(file);
    const double ms = timer.nsecsElapsed() / 1e6;
    *processed = result.processed;
    return result.imported ? ms : -1;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    bench::Office office;
    QTemporaryDir& dir = office.dir;
    QString file =
        QStringLiteral(BRIMSETT_SAMPLES) + QStringLiteral("/sob_master_file_oct2013.txt");
    if (!QFile::exists(file)) {
        out << "samples folder missing: using a made-up file of 7,200 codes\n";
        file = madeUpFile(dir.path());
    }
    out << "file: " << file << "\n";

    Database* db = office.db.get();
    RecordingPrompter prompter;
    const SqlLog log(OfficePaths(dir.path() + QLatin1Char('/')), false);
    SobImport import(*db, prompter, log);

    int processed = 0;
    qint64 before = db->statementCount();
    const double first = timed(import, file, &processed);
    out << QStringLiteral("first import (empty table): %1 ms, %2 codes, %3 statements\n")
               .arg(first, 0, 'f', 1)
               .arg(processed)
               .arg(db->statementCount() - before);
    // Its rows go through the import's own prepared statements, one per new or changed code,
    // which the count leaves out.
    bench::step(out, QStringLiteral("first import"), first, double(db->statementCount() - before),
                QStringLiteral("import"));

    const int runs = 7;
    before = db->statementCount();
    QList<double> again;
    for (int i = 0; i < runs; ++i) {
        again << timed(import, file, &processed);
    }
    std::sort(again.begin(), again.end());
    out << QStringLiteral("re-import (%1 runs): best %2 ms, median %3 ms, worst %4 ms\n")
               .arg(runs)
               .arg(again.first(), 0, 'f', 1)
               .arg(again.at(runs / 2), 0, 'f', 1)
               .arg(again.last(), 0, 'f', 1);
    bench::step(out, QStringLiteral("re-import (median)"), again.at(runs / 2),
                double(db->statementCount() - before) / runs, QStringLiteral("import"));
    if (prompter.messages().size() > 0) {
        out << "last message: " << prompter.last().text() << "\n";
    }
    return again.first() < 0 ? 1 : 0;
}
