#include "TestSupport.h"

#include "foundation/Database.h"

#include <QElapsedTimer>

#include <sqlite3.h>

#include <chrono>
#include <future>
#include <optional>
#include <thread>

using namespace brimsett;

namespace {

// Another program's write transaction on the same database, begun on its own thread and
// connection before the constructor returns, and committed holdMs later.
class OtherWriter {
public:
    OtherWriter(const QString& location, int holdMs) {
        std::promise<void> begun;
        std::future<void> ready = begun.get_future();
        m_thread = std::thread([location, holdMs, &begun] {
            std::unique_ptr<Database> db;
            std::optional<Transaction> tx;
            try {
                db = test::openAgain(location);
                tx.emplace(*db);
                db->exec(QStringLiteral("Insert Into t Values (2)"));
            } catch (...) {
                begun.set_exception(std::current_exception());
                return;
            }
            begun.set_value();
            std::this_thread::sleep_for(std::chrono::milliseconds(holdMs));
            tx->commit();
        });
        try {
            ready.get();
        } catch (...) {
            m_thread.join();
            throw;
        }
    }
    ~OtherWriter() { m_thread.join(); }

private:
    std::thread m_thread;
};

// How long this connection waits for another writer before giving up.
void waitAtMost(Database& db, int ms) {
    if (db.onServer()) {
        db.exec(QStringLiteral("SET lock_timeout = %1").arg(ms));
    } else {
        sqlite3_busy_timeout(static_cast<sqlite3*>(db.nativeHandle()), ms);
    }
}

}  // namespace

class TestTransaction : public QObject {
    Q_OBJECT
    test::TempOffice m_office;
    std::unique_ptr<Database> m_db;

private slots:
    void initTestCase() {
        qputenv("BRIMSETT_STRICT_READS", "1");  // as every test runs
        m_db = m_office.emptyDatabase();
        m_db->exec(QStringLiteral("Create Table t (n Integer)"));
        m_db->exec(QStringLiteral("Insert Into t Values (1)"));
    }

    // A write transaction begun beside a read part-way could not wait for another writer.
    void aReadLeftOpenIsRefusedAtTheTransactionStart() {
        if (m_db->onServer()) {
            QSKIP("a server connection reads its rows whole and waits for the write lock as it is");
        }
        QSqlQuery open = m_db->exec(QStringLiteral("Select n From t"));
        QVERIFY(open.next());
        QVERIFY_THROWS_EXCEPTION(DbError, Transaction(*m_db, QStringLiteral("saving")));
        QVERIFY(!open.next());  // read to its end, it is let go
        Transaction tx(*m_db);
        tx.commit();
    }

    void waitsForAnotherWriterThenSaysNothingChangedPastTheTimeOut() {
        {
            OtherWriter other(m_office.databaseLocation(), 400);
            QElapsedTimer clock;
            clock.start();
            Transaction tx(*m_db);
            QVERIFY(clock.elapsed() >= 300);
            tx.commit();
        }
        waitAtMost(*m_db, 100);
        {
            OtherWriter other(m_office.databaseLocation(), 1000);
            try {
                Transaction tx(*m_db, QStringLiteral("saving claim 10000001"));
                QFAIL("the lock was taken");
            } catch (const DbError& e) {
                QCOMPARE(
                    e.message(),
                    QStringLiteral("saving claim 10000001: The database is busy: another program "
                                   "or computer kept it locked longer than Brimsett waits. "
                                   "Nothing was changed; please try again."));
            }
            QCOMPARE(m_db->transactionDepth(), 0);
        }
        // The refused start left nothing open: the next save goes through.
        Transaction tx(*m_db);
        m_db->exec(QStringLiteral("Insert Into t Values (3)"));
        tx.commit();
        QCOMPARE(test::rowsOf(m_db->exec(QStringLiteral("Select n From t Order By n"))),
                 (QStringList{"1", "2", "2", "3"}));
    }

    // A statement the engine refuses inside a save is told in the engine's words, and the
    // connection stays usable.
    void aRefusedStatementSaysWhy() {
        test::refuseRows(*m_db, QStringLiteral("Insert"), QStringLiteral("t"),
                         QStringLiteral("NEW.n = 9"), QStringLiteral("disk full"));
        {
            Transaction tx(*m_db);
            try {
                m_db->exec(QStringLiteral("Insert Into t Values (9)"), {},
                           QStringLiteral("saving"));
                QFAIL("the refused row was written");
            } catch (const DbError& e) {
                QCOMPARE(e.message(), QStringLiteral("saving: disk full"));
            }
        }
        QCOMPARE(m_db->scalar(QStringLiteral("Select Count(*) From t")).toInt(), 4);
    }
};

QTEST_GUILESS_MAIN(TestTransaction)
#include "test_transaction.moc"
