#pragma once

// What the benchmarks share: a made-up office in a folder removed at the end, and the plans of
// the statements they time.
#include "foundation/Database.h"
#include "foundation/Schema.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextStream>

#include <sqlite3.h>

#include <algorithm>
#include <memory>

namespace brimsett::bench {

// An office database of the current layout in a temporary folder.
struct Office {
    QTemporaryDir dir;
    std::unique_ptr<Database> db = Database::createSqlite(folder() + QStringLiteral("medical.mdb"));

    Office() { schema::create(*db); }
    QString folder() const { return dir.path() + QLatin1Char('/'); }

    // Fills the office with room for the indexes while a million rows go in, the office's own
    // cache setting after; the milliseconds it took.
    template <typename Fill>
    qint64 fill(Fill&& fillWith) {
        db->exec(QStringLiteral("PRAGMA cache_size=-262144"));
        QElapsedTimer timer;
        timer.start();
        fillWith(*db);
        const qint64 ms = timer.elapsed();
        db->exec(QStringLiteral("PRAGMA cache_size=-2000"));
        return ms;
    }
};

// Prints a statement's plan and says whether every table it reads is found through an index,
// never scanned; the tables named in readWhole are small ones read whole by design. The plan
// is asked straight of the engine with the placeholders left unbound: it does not depend on
// the values.
inline bool explain(Database& db, const QString& label, const QString& sql, QTextStream& out,
                    const QStringList& readWhole = {}) {
    sqlite3_stmt* statement = nullptr;
    const QByteArray text = QByteArrayLiteral("Explain Query Plan ") + sql.toUtf8();
    sqlite3_prepare_v2(static_cast<sqlite3*>(db.nativeHandle()), text.constData(), -1, &statement,
                       nullptr);
    QStringList steps;
    bool indexed = statement != nullptr;
    while (statement != nullptr && sqlite3_step(statement) == SQLITE_ROW) {
        const QString detail =
            QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 3)));
        steps << detail;
        const bool allowed = std::any_of(readWhole.begin(), readWhole.end(), [&](const QString& t) {
            return detail.contains(t, Qt::CaseInsensitive);
        });
        indexed = indexed && (!detail.startsWith(QLatin1String("SCAN ")) || allowed);
    }
    sqlite3_finalize(statement);
    out << label << (label.isEmpty() ? "" : ": ")
        << (indexed ? "uses an index" : "DOES NOT USE AN INDEX") << "\n    " << sql << "\n    "
        << steps.join(QStringLiteral("\n    ")) << "\n";
    return indexed;
}

}  // namespace brimsett::bench
