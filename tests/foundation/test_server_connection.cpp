#include "OfficeFixture.h"

#include <QtTest>

using namespace brimsett;

// A server that drops the connection in the middle of a save.
class TestServerConnection : public QObject {
    Q_OBJECT

private slots:
    void aLostConnectionLosesTheSaveAndTheNextSaveWorks() {
        test::OfficeFixture f;
        if (!f.db->onServer()) {
            QSKIP("a file database has no connection to lose");
        }
        const auto insert = [&](int id) {
            f.db->exec(QStringLiteral("Insert Into patients (PatientID, LName) Values (?, 'Lost')"),
                       {id});
        };
        {
            Transaction t(*f.db, QStringLiteral("saving"));
            insert(1);
            const QVariant pid = f.db->scalar(QStringLiteral("Select pg_backend_pid()"));
            auto other = f.office.emptyDatabase(QStringLiteral("other.mdb"));
            other->exec(QStringLiteral("Select pg_terminate_backend(?)"), {pid});
            try {
                insert(2);
                QFAIL("the insert after the connection was cut succeeded");
            } catch (const DbError& e) {
                QVERIFY2(e.message().contains("The connection to the database server was lost"),
                         qPrintable(e.message()));
            }
        }
        // The same action again, as the user would after the message.
        Transaction again(*f.db, QStringLiteral("saving"));
        insert(3);
        again.commit();
        QCOMPARE(test::rowsOf(f.db->exec(QStringLiteral("Select PatientID From patients"))),
                 QStringList{"3"});
    }
};

QTEST_GUILESS_MAIN(TestServerConnection)
#include "test_server_connection.moc"
