#include "TestSupport.h"

#include "foundation/Database.h"

#include <QElapsedTimer>

#include <sqlite3.h>

#include <chrono>
#include <thread>

using namespace brimsett;

namespace {

// Another program's write transaction on the same file, held for a while on its own thread.
class OtherWriter {
public:
    OtherWriter(const QString& file, int holdMs) {
        sqlite3_open(QFile::encodeName(file).constData(), &m_db);
        sqlite3_exec(m_db, "BEGIN IMMEDIATE; Insert Into t Values (2)", nullptr, nullptr, nullptr);
        m_thread = std::thread([this, holdMs] {
            std::this_thread::sleep_for(std::chrono::milliseconds(holdMs));
            sqlite3_exec(m_db, "COMMIT", nullptr, nullptr, nullptr);
        });
    }
    ~OtherWriter() {
        m_thread.join();
        sqlite3_close(m_db);
    }

private:
    sqlite3* m_db = nullptr;
    std::thread m_thread;
};

}  // namespace

class TestTransaction : public QObject {
    Q_OBJECT

private slots:
    // As every test runs: a read left open when a transaction begins is a fault.
    void initTestCase() { qputenv("BRIMSETT_STRICT_READS", "1"); }

    void init() {
        m_office = std::make_unique<test::TempOffice>();
        m_db = m_office->emptyDatabase();
        m_db->exec(QStringLiteral("Create Table t (n Integer)"));
        m_db->exec(QStringLiteral("Insert Into t Values (1)"));
    }
    void cleanup() {
        m_db.reset();
        m_office.reset();
    }

    // Under BRIMSETT_STRICT_READS a read left part-way when a write transaction begins is
    // refused outright; finished reads are fine.
    void aReadLeftOpenIsRefusedAtTheTransactionStart() {
        QSqlQuery open = m_db->exec(QStringLiteral("Select n From t"));
        QVERIFY(open.next());
        try {
            Transaction tx(*m_db, QStringLiteral("saving"));
            QFAIL("the transaction began with a read open");
        } catch (const DbError& e) {
            QVERIFY2(e.message().contains(QStringLiteral("Select n From t")),
                     qPrintable(e.message()));
        }
        while (open.next()) {
        }
        Transaction tx(*m_db);
        m_db->exec(QStringLiteral("Insert Into t Values (3)"));
        tx.commit();
        QCOMPARE(m_db->scalar(QStringLiteral("Select Count(*) From t")).toInt(), 2);
    }

    void waitsForAnotherWriter() {
        OtherWriter other(m_office->file(QStringLiteral("medical.mdb")), 400);
        QElapsedTimer clock;
        clock.start();
        Transaction tx(*m_db);
        QVERIFY(clock.elapsed() >= 300);
        m_db->exec(QStringLiteral("Insert Into t Values (3)"));
        tx.commit();
        QCOMPARE(m_db->scalar(QStringLiteral("Select Sum(n) From t")).toInt(), 6);
    }

    void aLockOutlastingTheTimeOutSaysNothingChanged() {
        sqlite3_busy_timeout(static_cast<sqlite3*>(m_db->nativeHandle()), 100);
        OtherWriter other(m_office->file(QStringLiteral("medical.mdb")), 1500);
        try {
            Transaction tx(*m_db, QStringLiteral("saving claim 10000001"));
            QFAIL("the lock was taken");
        } catch (const DbError& e) {
            QCOMPARE(
                e.message(),
                QStringLiteral("saving claim 10000001: The database is busy: another program "
                               "or computer kept it locked longer than Brimsett waits. Nothing "
                               "was changed; please try again."));
        }
        QCOMPARE(m_db->transactionDepth(), 0);
    }

private:
    std::unique_ptr<test::TempOffice> m_office;
    std::unique_ptr<Database> m_db;
};

QTEST_GUILESS_MAIN(TestTransaction)
#include "test_transaction.moc"
