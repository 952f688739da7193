#include "TestSupport.h"

#include "foundation/SqlLog.h"

#include <QFileInfo>
#include <QtTest>

using namespace brimsett;

class TestSqlLog : public QObject {
    Q_OBJECT

private slots:
    void appendsOneCrLfLinePerStatementOnlyWhenOn() {
        test::TempOffice office;
        SqlLog log(OfficePaths(office.folder()), false);
        QVERIFY(!log.write(QStringLiteral("Delete From patients Where PatientID=1")));
        QVERIFY(!QFileInfo::exists(office.file(QStringLiteral("Sync-Send"))));

        log.setOn(true);
        QCOMPARE(log.path(), office.file(QStringLiteral("Sync-Send/LOG.TXT")));
        QVERIFY(log.write(QStringLiteral("Insert Into patients (LName) Values('O''Brien')")));
        // A second log object stands for the next statement of another screen: each appends.
        const SqlLog other(OfficePaths(office.folder()), true);
        QVERIFY(other.write(QStringLiteral("Update patients\nSet LName=NULL Where PatientID=2")));
        const QString expected = QStringLiteral(
            "Insert Into patients (LName) Values('O''Brien')\r\n"
            "Update patients Set LName=NULL Where PatientID=2\r\n");
        QCOMPARE(test::readText(log.path()), expected);

        log.setOn(false);
        QVERIFY(!log.write(QStringLiteral("Delete From patients")));
        QCOMPARE(test::readText(log.path()), expected);
    }

    void failureIsQuiet() {
        test::TempOffice office;
        // A file where the folder should be: neither the folder nor the log can be made.
        test::writeText(office.file(QStringLiteral("Sync-Send")), "not a folder");
        const SqlLog log(OfficePaths(office.folder()), true);
        QVERIFY(!log.write(QStringLiteral("Delete From patients")));
        QCOMPARE(test::readText(office.file(QStringLiteral("Sync-Send"))),
                 QStringLiteral("not a folder"));
    }
};

QTEST_GUILESS_MAIN(TestSqlLog)
#include "test_sqllog.moc"
