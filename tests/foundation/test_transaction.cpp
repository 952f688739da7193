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
    test::TempOffice m_office;
    std::unique_ptr<Database> m_db;

    QString file() const { return m_office.file(QStringLiteral("medical.mdb")); }

private slots:
    void initTestCase() {
        qputenv("BRIMSETT_STRICT_READS", "1");  // as every test runs
        m_db = m_office.emptyDatabase();
        m_db->exec(QStringLiteral("Create Table t (n Integer)"));
        m_db->exec(QStringLiteral("Insert Into t Values (1)"));
    }

    // A write transaction begun beside a read part-way could not wait for another writer.
    void aReadLeftOpenIsRefusedAtTheTransactionStart() {
        QSqlQuery open = m_db->exec(QStringLiteral("Select n From t"));
        QVERIFY(open.next());
        QVERIFY_THROWS_EXCEPTION(DbError, Transaction(*m_db, QStringLiteral("saving")));
        QVERIFY(!open.next());  // read to its end, it is let go
        Transaction tx(*m_db);
        tx.commit();
    }

    void waitsForAnotherWriterThenSaysNothingChangedPastTheTimeOut() {
        {
            OtherWriter other(file(), 400);
            QElapsedTimer clock;
            clock.start();
            Transaction tx(*m_db);
            QVERIFY(clock.elapsed() >= 300);
            tx.commit();
        }
        sqlite3_busy_timeout(static_cast<sqlite3*>(m_db->nativeHandle()), 100);
        OtherWriter other(file(), 1000);
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
};

QTEST_GUILESS_MAIN(TestTransaction)
#include "test_transaction.moc"
