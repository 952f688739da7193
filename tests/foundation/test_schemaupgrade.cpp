#include "TestSupport.h"
#include "foundation/Schema.h"
#include "foundation/SchemaUpgrade.h"

#include <QtTest>

using namespace brimsett;

class TestSchemaUpgrade : public QObject {
    Q_OBJECT

private slots:
    void currentDatabaseIsLeftAlone();
    void missingIndexIsMadeOnce();
    void oldDatabaseGetsEveryMissingColumnAndTable();
    void onlyTheMissingColumnIsAdded_data();
    void onlyTheMissingColumnIsAdded();
    void failingStepLeavesNoTransactionAndKeepsEarlierWork();
};

namespace {

// The tables an old office database had before any of the later columns were added.
void createOldDatabase(Database& db) {
    for (const char* statement : {
             "Create Table claims (ClaimID Long PRIMARY KEY, BatchID Text(12), AcctNum Text(8))",
             "Create Table items (ClaimID Long, ItemID Long, ServiceCode Text(5))",
             "Create Table patients (PatientID Long PRIMARY KEY, HealthNum Text(12))",
             "Create Table ServiceCodes (ServiceCode Text(5) PRIMARY KEY, FeeGeneral Currency)",
             "Create Table Doctors (DoctorID Text(3) PRIMARY KEY, ProviderNum Text(6))",
             "Create Table quickservcodes (QuickCode Text(10), Code Text(5))",
             "Create Table appointments (AppID Long PRIMARY KEY, DoctorID Text(3))",
         }) {
        db.exec(db.dialect().ddl(QString::fromLatin1(statement)));
    }
}

}  // namespace

void TestSchemaUpgrade::currentDatabaseIsLeftAlone() {
    test::TempOffice office;
    auto db = office.emptyDatabase();
    schema::create(*db);
    QStringList executed;
    QVERIFY(upgradeSchema(*db, &executed));
    QCOMPARE(executed, QStringList());
}

// A database made before an index gets it, under the name a new one has, once.
void TestSchemaUpgrade::missingIndexIsMadeOnce() {
    test::TempOffice office;
    auto db = office.emptyDatabase();
    schema::create(*db);
    for (const QString& statement :
         {QString("CREATE INDEX idx_Appointments_LowerPatientName ON "
                  "Appointments (Lower(PatientName))"),
          QString("CREATE INDEX idx_Patients_LowerLName ON Patients (Lower(LName))"),
          QString("CREATE INDEX idx_Claims_DoctorID_ClaimID ON Claims (DoctorID, ClaimID)"),
          QString("CREATE INDEX idx_Claims_DateCreated ON Claims (DateCreated)"),
          QString("CREATE INDEX idx_Items_LowerServiceCode ON Items (Lower(ServiceCode))"),
          QString("CREATE INDEX idx_Items_facility ON Items (facility)")}) {
        db->exec("DROP INDEX " + statement.section(' ', 2, 2));
        QStringList executed;
        QVERIFY(upgradeSchema(*db, &executed));
        QCOMPARE(executed, QStringList{statement});
        executed.clear();
        upgradeSchema(*db, &executed);
        QCOMPARE(executed, QStringList());
    }
}

void TestSchemaUpgrade::oldDatabaseGetsEveryMissingColumnAndTable() {
    test::TempOffice office;
    auto db = office.emptyDatabase();
    createOldDatabase(*db);
    db->exec(
        "Insert Into claims (ClaimID, BatchID, AcctNum) Values (10000001, '000000000000', "
        "'00000001')");

    QStringList executed;
    QVERIFY(!upgradeSchema(*db, &executed));
    QCOMPARE(executed.size(), 35 + 4 + 2);
    QCOMPARE(executed.first(), QString("ALTER TABLE claims ADD SLI Text(4);"));
    QCOMPARE(executed.at(34), QString("ALTER TABLE Doctors ADD SLI text(30);"));
    QVERIFY(
        executed.at(35).startsWith("Create Table HNBatches (BatchID text(12),MOHUserID text(8),"));
    // The items have their code and now their facility: their indexes are made; the claims
    // have no doctor, so no index of it.
    QCOMPARE(executed.mid(35 + 4),
             QStringList({"CREATE INDEX idx_Items_LowerServiceCode ON Items (Lower(ServiceCode))",
                          "CREATE INDEX idx_Items_facility ON Items (facility)"}));
    for (const char* table : {"HNBatches", "OtherParams", "Invoices", "EnhFee"}) {
        QVERIFY2(db->hasTable(table), table);
    }
    QVERIFY(db->hasColumn("EnhFee", "Code8"));
    QVERIFY(db->hasColumn("claims", "AllBatches"));
    // Looked for, never added.
    QVERIFY(!db->hasColumn("appointments", "ClaimID"));
    // Rows survive.
    QCOMPARE(db->scalar("Select AcctNum From claims").toString(), QString("00000001"));

    executed.clear();
    QVERIFY(upgradeSchema(*db, &executed));
    QCOMPARE(executed, QStringList());
}

void TestSchemaUpgrade::onlyTheMissingColumnIsAdded_data() {
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("present");
    QTest::addColumn<QString>("drop");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("claims.sli missing")
        << "claims"
        << ""
        << "SLI" << QStringList{"ALTER TABLE claims ADD SLI Text(4);"};
    QTest::newRow("upper-case name counts as present") << "claims"
                                                       << "SLI"
                                                       << "" << QStringList{};
    QTest::newRow("lower-case name counts as present") << "Doctors"
                                                       << "sli"
                                                       << "" << QStringList{};
    QTest::newRow("only Patients.Flag missing")
        << "Patients"
        << ""
        << "Flag" << QStringList{"ALTER TABLE Patients ADD Flag bit;"};
}

void TestSchemaUpgrade::onlyTheMissingColumnIsAdded() {
    QFETCH(QString, table);
    QFETCH(QString, present);
    QFETCH(QString, drop);
    QFETCH(QStringList, expected);
    test::TempOffice office;
    auto db = office.emptyDatabase();
    schema::create(*db);
    if (!present.isEmpty()) {
        // Rename the column to the other spelling (quoted, so that a server keeps its case):
        // the walk must not care.
        const auto columns = db->dialect().columnNames(db->connection(), table);
        for (const QString& c : columns) {
            if (c.compare(present, Qt::CaseInsensitive) == 0 && c != present) {
                db->exec(QStringLiteral("ALTER TABLE %1 RENAME COLUMN %2 TO [%3]")
                             .arg(table, c, present));
            }
        }
        QVERIFY(db->dialect().columnNames(db->connection(), table).contains(present));
    }
    if (!drop.isEmpty()) {
        db->exec(QStringLiteral("ALTER TABLE %1 DROP COLUMN %2").arg(table, drop));
    }
    QStringList executed;
    QCOMPARE(upgradeSchema(*db, &executed), expected.isEmpty());
    QCOMPARE(executed, expected);
}

void TestSchemaUpgrade::failingStepLeavesNoTransactionAndKeepsEarlierWork() {
    test::TempOffice office;
    auto db = office.emptyDatabase();
    createOldDatabase(*db);
    db->exec("Drop Table quickservcodes");  // the walk reaches it after the doctors' columns
    QStringList executed;
    QVERIFY_THROWS_EXCEPTION(DbError, upgradeSchema(*db, &executed));
    QCOMPARE(executed.last(), QString("ALTER TABLE patients ADD HL7PatID text(50);"));
    QVERIFY(db->hasColumn("claims", "sli"));
    QVERIFY(!db->hasColumn("patients", "flag"));
    QVERIFY(!db->hasTable("HNBatches"));
    // The refused step's transaction is gone: the next statement runs on its own and stays.
    db->exec(db->dialect().ddl("Create Table probe (x Long)"));
    db.reset();
    db = test::openAgain(office.databaseLocation());
    QVERIFY(db->hasTable("probe"));

    // Once the cause is gone, the next start does only the rest.
    db->exec(db->dialect().ddl("Create Table quickservcodes (QuickCode Text(10), Code Text(5))"));
    executed.clear();
    QVERIFY(!upgradeSchema(*db, &executed));
    QCOMPARE(executed.first(), QString("ALTER TABLE quickservcodes ADD Description text(50);"));
    QVERIFY(upgradeSchema(*db));
}

QTEST_GUILESS_MAIN(TestSchemaUpgrade)
#include "test_schemaupgrade.moc"
