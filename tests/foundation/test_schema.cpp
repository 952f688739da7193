#include "TestSupport.h"

#include "foundation/Database.h"
#include "foundation/DbError.h"
#include "foundation/Schema.h"

#include <QSqlQuery>
#include <QTest>

using namespace brimsett;

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

    void createsEveryTable_data() {
        QTest::addColumn<QString>("table");
        const QString tables = QStringLiteral(
            "Patients,patientprofiles,patientprofilesetup,alarms,Doctors,DoctorsOther,speccodes,"
            "mohoffices,provincodes,ThirdParty,EDTParams,OtherParams,Menus,Reports,Invoices,"
            "EnhFee,Claims,Items,ServiceCodes,ServiceCodesDirect,DiagCodes,ExplCodes,"
            "QuickServCodes,QuickDiagCodes,QuickCityCodes,QuickFacCodes,Batches,HNBatches,"
            "HN batches,Appointments,AppTemplates,AppTimeSlots,AppColumns,realreqstage");
        for (const QString& table : tables.split(QLatin1Char(','))) {
            QTest::newRow(qPrintable(table)) << table;
        }
    }
    void createsEveryTable() {
        QFETCH(QString, table);
        QVERIFY(schema::tableNames().contains(table, Qt::CaseInsensitive));
        QVERIFY(m_db->hasTable(table.toLower()));
    }

    // The column list of the schema upgrade: a new database must already satisfy all of it.
    void hasEveryColumnTheUpgradeAdds_data() {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("column");
        const QString rows = QStringLiteral(
            "claims.sli claims.splitflag claims.acflag claims.invoicenum items.orderid "
            "items.ordernum items.orderstatus items.placerid items.description1 items.description2 "
            "patients.batchid patients.hncheckdate patients.response claims.mohclaim "
            "patients.status ServiceCodes.q200flag ServiceCodes.prereq ServiceCodes.minage2 "
            "ServiceCodes.maxage2 ServiceCodes.minage3 ServiceCodes.maxage3 ServiceCodes.keywords "
            "Doctors.explcode Doctors.modifier items.facility patients.hl7patid "
            "quickservcodes.description quickservcodes.numserv quickservcodes.colour "
            "quickservcodes.length quickservcodes.numservstring Patients.flag Claims.allbatches "
            "Claims.ra Doctors.sli");
        for (const QString& row : rows.split(QLatin1Char(' '))) {
            const QStringList parts = row.split(QLatin1Char('.'));
            QTest::newRow(qPrintable(row)) << parts.at(0) << parts.at(1);
        }
    }
    void hasEveryColumnTheUpgradeAdds() {
        QFETCH(QString, table);
        QFETCH(QString, column);
        QVERIFY(m_db->hasColumn(table, column));
    }

    void provinceLengths_data() {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("length");  // invalid: any length
        QTest::newRow("ON") << "ON"
                            << "Ontario" << QVariant(10);
        QTest::newRow("AB") << "AB"
                            << "Alberta" << QVariant();
        QTest::newRow("BC") << "BC"
                            << "British Columbia" << QVariant(10);
        QTest::newRow("MB") << "MB"
                            << "Manitoba" << QVariant(6);
        QTest::newRow("NL") << "NL"
                            << "Newfoundland and Labrador" << QVariant(12);
        QTest::newRow("NB") << "NB"
                            << "New Brunswick" << QVariant(9);
        QTest::newRow("NT") << "NT"
                            << "Northwest Territories" << QVariant(8);
        QTest::newRow("NS") << "NS"
                            << "Nova Scotia" << QVariant(10);
        QTest::newRow("PE") << "PE"
                            << "Prince Edward Island" << QVariant(8);
        QTest::newRow("SK") << "SK"
                            << "Saskatchewan" << QVariant(9);
        QTest::newRow("YT") << "YT"
                            << "Yukon" << QVariant(9);
        QTest::newRow("QU") << "QU"
                            << "Quebec" << QVariant();
    }
    void provinceLengths() {
        QFETCH(QString, code);
        QFETCH(QString, name);
        QFETCH(QVariant, length);
        QSqlQuery q = m_db->exec(
            QStringLiteral("SELECT ProvName, Format FROM provincodes WHERE ProvinCode = ?"),
            {code});
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), name);
        QCOMPARE(q.value(1).isNull(), !length.isValid());
        QCOMPARE(q.value(1).toInt(), length.toInt());
        QVERIFY(!q.next());
    }

    void lookupsUseAnIndex_data() {
        QTest::addColumn<QString>("query");
        QTest::newRow("claims by account") << "SELECT * FROM Claims WHERE AcctNum='00000042'";
        QTest::newRow("claims by batch") << "SELECT * FROM claims WHERE BatchID='000000000000'";
        QTest::newRow("claims by patient") << "SELECT * FROM claims WHERE PatientID=7";
        QTest::newRow("items of a claim") << "SELECT * FROM Items WHERE ClaimID=10000001";
        QTest::newRow("answered item") << "SELECT * FROM Items WHERE ClaimID=1 AND Status<>2 "
                                          "AND ServiceDate='2026-11-22' AND ServiceCode='A007A'";
        QTest::newRow("items by date") << "SELECT * FROM items WHERE ServiceDate='2026-11-22'";
        QTest::newRow("patient by card") << "SELECT * FROM patients WHERE HealthNum='1234567897'";
        QTest::newRow("patient by name") << "SELECT * FROM patients WHERE LName='Smith'";
        QTest::newRow("day of a doctor")
            << "SELECT * FROM appointments WHERE DoctorID='AB' AND AppDate='2026-11-22'";
        QTest::newRow("batch file") << "SELECT * FROM batches WHERE FileName='HC123456.007'";
    }
    void lookupsUseAnIndex() {
        QFETCH(QString, query);
        QSqlQuery plan = m_db->exec(QStringLiteral("EXPLAIN QUERY PLAN ") + query);
        QStringList steps;
        while (plan.next()) {
            steps << plan.value(3).toString();
        }
        QVERIFY2(steps.size() == 1 && steps.first().startsWith(QStringLiteral("SEARCH")),
                 qPrintable(steps.join(QStringLiteral("; "))));
    }

    void secondCreateKeepsTheOfficeData() {
        test::TempOffice office;
        auto db = freshDatabase(office);
        db->exec(
            QStringLiteral("UPDATE provincodes SET ProvName = 'Ont.' WHERE ProvinCode = 'ON'"));
        schema::create(*db);
        QCOMPARE(db->scalar(QStringLiteral("SELECT Count(*) FROM provincodes")).toInt(), 12);
        QCOMPARE(
            db->scalar(QStringLiteral("SELECT ProvName FROM provincodes WHERE ProvinCode='ON'"))
                .toString(),
            QStringLiteral("Ont."));
    }

    void keepsAnExistingTableAsItIs() {
        test::TempOffice office;
        auto db = office.emptyDatabase();
        db->exec(QStringLiteral("CREATE TABLE claims (ClaimID Long, AcctNum Text(8))"));
        db->exec(QStringLiteral("INSERT INTO claims VALUES (10000001, '00000001')"));
        schema::create(*db);
        QVERIFY(!db->hasColumn(QStringLiteral("Claims"), QStringLiteral("SLI")));
        QCOMPARE(db->scalar(QStringLiteral("SELECT AcctNum FROM claims")).toString(),
                 QStringLiteral("00000001"));
        QVERIFY(db->hasTable(QStringLiteral("Items")));
    }

    void failedCreateLeavesNoTable() {
        test::TempOffice office;
        auto db = office.emptyDatabase();
        // An index of that name already in place makes the creation of items fail half-way.
        db->exec(QStringLiteral("CREATE TABLE spare (x Long)"));
        db->exec(QStringLiteral("CREATE INDEX idx_Items_ServiceDate ON spare (x)"));
        QVERIFY_THROWS_EXCEPTION(DbError, schema::create(*db));
        QVERIFY(!db->hasTable(QStringLiteral("Patients")));
        QVERIFY(!db->hasTable(QStringLiteral("Items")));
    }

    void moneyAndDatesRoundTrip_data() {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("engineType");
        QTest::newRow("large fee") << "FeeSubm" << QVariant(qlonglong(123456789012)) << "integer";
        QTest::newRow("negative paid") << "FeePaid" << QVariant(qlonglong(-357500)) << "integer";
        QTest::newRow("service date")
            << "ServiceDate" << QVariant(QStringLiteral("2026-11-22")) << "text";
        QTest::newRow("not paid yet") << "FeePaid" << QVariant() << "null";
    }
    void moneyAndDatesRoundTrip() {
        QFETCH(QString, column);
        QFETCH(QVariant, stored);
        QFETCH(QString, engineType);
        test::TempOffice office;
        auto db = freshDatabase(office);
        db->exec(QStringLiteral("INSERT INTO items (ClaimID, ItemID, %1) VALUES (10000001, 1, ?)")
                     .arg(column),
                 {stored});
        QSqlQuery q = db->exec(QStringLiteral("SELECT %1, typeof(%1) FROM items").arg(column));
        QVERIFY(q.next());
        QCOMPARE(q.value(1).toString(), engineType);
        QCOMPARE(q.value(0).toString(), stored.toString());
    }

    void itemsAreKeyedByClaimAndLine() {
        test::TempOffice office;
        auto db = freshDatabase(office);
        const QString insert = QStringLiteral("INSERT INTO items (ClaimID, ItemID) VALUES (?, ?)");
        db->exec(insert, {10000001, 1});
        db->exec(insert, {10000001, 2});
        db->exec(insert, {10000002, 1});
        QVERIFY_THROWS_EXCEPTION(DbError, db->exec(insert, {10000001, 2}));
        QVERIFY_THROWS_EXCEPTION(DbError, db->exec(insert, {QVariant(), 3}));
    }
};

QTEST_GUILESS_MAIN(TestSchema)
#include "test_schema.moc"
