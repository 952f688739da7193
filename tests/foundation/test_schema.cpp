#include "TestSupport.h"

#include "foundation/Database.h"
#include "foundation/DbError.h"
#include "foundation/Schema.h"

#include <QSqlQuery>
#include <QTest>

using namespace brimsett;
using test::row;

class TestSchema : public QObject {
    Q_OBJECT

    static std::unique_ptr<Database> freshDatabase(test::TempOffice& office) {
        auto db = office.emptyDatabase();
        schema::create(*db);
        return db;
    }
    // One new database for the checks that only read it.
    test::TempOffice m_office;
    std::unique_ptr<Database> m_db;

private slots:
    void initTestCase() { m_db = freshDatabase(m_office); }

    // The columns the schema upgrade adds are checked by its own test on a new database.
    void createsEveryTable() {
        const QString tables = QStringLiteral(
            "Patients,patientprofiles,patientprofilesetup,alarms,Doctors,DoctorsOther,speccodes,"
            "mohoffices,provincodes,ThirdParty,EDTParams,OtherParams,Menus,Reports,Invoices,"
            "EnhFee,Claims,Items,ServiceCodes,ServiceCodesDirect,DiagCodes,ExplCodes,"
            "QuickServCodes,QuickDiagCodes,QuickCityCodes,QuickFacCodes,Batches,HNBatches,"
            "HN batches,Appointments,AppTemplates,AppTimeSlots,AppColumns,realreqstage");
        for (const QString& table : tables.split(QLatin1Char(','))) {
            QVERIFY2(schema::tableNames().contains(table, Qt::CaseInsensitive), qPrintable(table));
            QVERIFY2(m_db->hasTable(table.toLower()), qPrintable(table));
        }
    }

    // The length of a health number in each province; NULL: any length.
    void provinceLengths() {
        QCOMPARE(test::rowsOf(m_db->exec(QStringLiteral(
                     "SELECT ProvinCode, ProvName, Format FROM provincodes ORDER BY ProvinCode"))),
                 (QStringList{"AB|Alberta|<null>", "BC|British Columbia|10", "MB|Manitoba|6",
                              "NB|New Brunswick|9", "NL|Newfoundland and Labrador|12",
                              "NS|Nova Scotia|10", "NT|Northwest Territories|8", "ON|Ontario|10",
                              "PE|Prince Edward Island|8", "QU|Quebec|<null>", "SK|Saskatchewan|9",
                              "YT|Yukon|9"}));
    }

    void lookupsUseAnIndex_data() {
        QTest::addColumn<QString>("query");
        row("claims by account", "SELECT * FROM Claims WHERE AcctNum='00000042'");
        row("claims by batch", "SELECT * FROM claims WHERE BatchID='000000000000'");
        row("claims by patient", "SELECT * FROM claims WHERE PatientID=7");
        row("items of a claim", "SELECT * FROM Items WHERE ClaimID=10000001");
        row("answered item",
            "SELECT * FROM Items WHERE ClaimID=1 AND Status<>2 "
            "AND ServiceDate='2026-11-22' AND ServiceCode='A007A'");
        row("items by date", "SELECT * FROM items WHERE ServiceDate='2026-11-22'");
        row("patient by card", "SELECT * FROM patients WHERE HealthNum='1234567897'");
        row("patient by name", "SELECT * FROM patients WHERE LName='Smith'");
        row("day of a doctor",
            "SELECT * FROM appointments WHERE DoctorID='AB' AND AppDate='2026-11-22'");
        row("batch file", "SELECT * FROM batches WHERE FileName='HC123456.007'");
    }
    void lookupsUseAnIndex() {
        QFETCH(QString, query);
        QStringList steps;
        if (m_db->onServer()) {
            // An empty table is cheaper to read whole; forbid that, and only a missing index
            // still gives a full read.
            m_db->exec(QStringLiteral("SET enable_seqscan = off"));
            steps = test::rowsOf(m_db->exec(QStringLiteral("EXPLAIN ") + query));
            m_db->exec(QStringLiteral("RESET enable_seqscan"));
            QVERIFY2(steps.filter(QStringLiteral("Seq Scan")).isEmpty() &&
                         !steps.filter(QStringLiteral("Index")).isEmpty(),
                     qPrintable(steps.join(QStringLiteral("; "))));
            return;
        }
        QSqlQuery plan = m_db->exec(QStringLiteral("EXPLAIN QUERY PLAN ") + query);
        while (plan.next()) {
            steps << plan.value(3).toString();
        }
        QVERIFY2(steps.size() == 1 && steps.first().startsWith(QStringLiteral("SEARCH")),
                 qPrintable(steps.join(QStringLiteral("; "))));
    }

    // An existing table is kept as it is, and so are the rows of a second creation.
    void createKeepsTheOfficeData() {
        test::TempOffice office;
        auto db = office.emptyDatabase();
        db->exec(db->dialect().ddl(
            QStringLiteral("CREATE TABLE claims (ClaimID Long, AcctNum Text(8))")));
        db->exec(QStringLiteral("INSERT INTO claims VALUES (10000001, '00000001')"));
        schema::create(*db);
        QVERIFY(!db->hasColumn(QStringLiteral("Claims"), QStringLiteral("SLI")));
        QCOMPARE(test::rowsOf(db->exec(QStringLiteral("SELECT * FROM claims"))),
                 QStringList{"10000001|00000001"});
        QVERIFY(db->hasTable(QStringLiteral("Items")));

        db->exec(
            QStringLiteral("UPDATE provincodes SET ProvName = 'Ont.' WHERE ProvinCode = 'ON'"));
        schema::create(*db);
        QCOMPARE(db->scalar(QStringLiteral("SELECT Count(*) FROM provincodes")).toInt(), 12);
        QCOMPARE(
            db->scalar(QStringLiteral("SELECT ProvName FROM provincodes WHERE ProvinCode='ON'"))
                .toString(),
            QStringLiteral("Ont."));
    }

    void failedCreateLeavesNoTable() {
        test::TempOffice office;
        auto db = office.emptyDatabase();
        // An index of that name already in place makes the creation of items fail half-way.
        db->exec(db->dialect().ddl(QStringLiteral("CREATE TABLE spare (x Long)")));
        db->exec(QStringLiteral("CREATE INDEX idx_Items_ServiceDate ON spare (x)"));
        QVERIFY_THROWS_EXCEPTION(DbError, schema::create(*db));
        QVERIFY(!db->hasTable(QStringLiteral("Patients")));
        QVERIFY(!db->hasTable(QStringLiteral("Items")));
    }

    // Large and negative amounts stay whole numbers and dates keep the engine's date form (text
    // on SQLite); an item is keyed by its claim and line.
    void itemsKeepMoneyAndDates() {
        test::TempOffice office;
        auto db = freshDatabase(office);
        const QString insert = QStringLiteral(
            "INSERT INTO items (ClaimID, ItemID, FeeSubm, FeePaid, ServiceDate) "
            "VALUES (?, ?, ?, ?, ?)");
        db->exec(insert, {10000001, 1, qlonglong(123456789012), qlonglong(-357500),
                          QStringLiteral("2026-11-22")});
        db->exec(insert, {10000001, 2, 0, QVariant(), QVariant()});
        db->exec(insert, {10000002, 1, 0, 0, QVariant()});
        const bool server = db->onServer();
        QCOMPARE(
            test::rowsOf(db->exec(
                QStringLiteral("SELECT FeeSubm, %1(FeeSubm), FeePaid, %1(FeePaid), ServiceDate, "
                               "%1(ServiceDate) FROM items WHERE ClaimID=10000001 "
                               "ORDER BY ItemID")
                    .arg(server ? QStringLiteral("pg_typeof") : QStringLiteral("typeof")))),
            (server ? QStringList{"123456789012|bigint|-357500|bigint|2026-11-22|date",
                                  "0|bigint|<null>|bigint|<null>|date"}
                    : QStringList{"123456789012|integer|-357500|integer|2026-11-22|text",
                                  "0|integer|<null>|null|<null>|null"}));
        QVERIFY_THROWS_EXCEPTION(DbError, db->exec(insert, {10000001, 2, 0, 0, QVariant()}));
        QVERIFY_THROWS_EXCEPTION(DbError, db->exec(insert, {QVariant(), 3, 0, 0, QVariant()}));
    }
};

QTEST_GUILESS_MAIN(TestSchema)
#include "test_schema.moc"
