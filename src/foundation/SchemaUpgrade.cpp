#include "foundation/SchemaUpgrade.h"

#include "foundation/Database.h"

#include <array>

namespace brimsett {

namespace {

struct ColumnStep {
    const char* table;
    const char* column;
    const char* statement;  // nullptr: looked for, never added
};

// The order matters: older databases were brought forward one step at a time like this.
constexpr std::array<ColumnStep, 36> kColumnSteps = {{
    {"claims", "sli", "ALTER TABLE claims ADD SLI Text(4);"},
    {"claims", "splitflag", "ALTER TABLE claims ADD SplitFlag Bit;"},
    {"claims", "acflag", "ALTER TABLE claims ADD ACFlag YesNo;"},
    {"claims", "invoicenum", "ALTER TABLE claims ADD InvoiceNum text(250);"},
    {"items", "orderid", "ALTER TABLE items ADD OrderID Text(50);"},
    {"items", "ordernum", "ALTER TABLE items ADD OrderNum Text(50);"},
    {"items", "orderstatus", "ALTER TABLE items ADD Orderstatus Text(50);"},
    {"items", "placerid", "ALTER TABLE items ADD PlacerID Text(50);"},
    {"items", "description1", "ALTER TABLE items ADD Description1 Text(50);"},
    {"items", "description2", "ALTER TABLE items ADD Description2 Text(50);"},
    {"patients", "batchid", "ALTER TABLE patients ADD BatchID Text(12);"},
    {"patients", "hncheckdate", "ALTER TABLE patients ADD HNCheckDate datetime;"},
    {"patients", "response", "ALTER TABLE patients ADD Response text(10);"},
    {"claims", "mohclaim", "ALTER TABLE claims ADD MOHClaim text(50);"},
    {"patients", "status", "ALTER TABLE patients ADD Status long;"},
    {"ServiceCodes", "q200flag", "ALTER TABLE ServiceCodes ADD Q200Flag bit;"},
    {"ServiceCodes", "prereq", "ALTER TABLE ServiceCodes ADD Prereq text(200);"},
    {"ServiceCodes", "minage2", "ALTER TABLE ServiceCodes ADD MinAge2 long;"},
    {"ServiceCodes", "maxage2", "ALTER TABLE ServiceCodes ADD MaxAge2 long;"},
    {"ServiceCodes", "minage3", "ALTER TABLE ServiceCodes ADD MinAge3 long;"},
    {"ServiceCodes", "maxage3", "ALTER TABLE ServiceCodes ADD MaxAge3 long;"},
    {"ServiceCodes", "keywords", "ALTER TABLE ServiceCodes ADD KeyWords long;"},
    {"Doctors", "explcode", "ALTER TABLE Doctors ADD ExplCode text(50);"},
    {"Doctors", "modifier", "ALTER TABLE Doctors ADD Modifier text(3);"},
    {"items", "facility", "ALTER TABLE Items ADD facility text(50);"},
    {"patients", "hl7patid", "ALTER TABLE patients ADD HL7PatID text(50);"},
    {"quickservcodes", "description", "ALTER TABLE quickservcodes ADD Description text(50);"},
    {"quickservcodes", "numserv", "ALTER TABLE quickservcodes ADD NumServ long;"},
    {"quickservcodes", "colour", "ALTER TABLE quickservcodes ADD Colour text(20);"},
    {"quickservcodes", "length", "ALTER TABLE quickservcodes ADD length long;"},
    {"quickservcodes", "numservstring", "ALTER TABLE quickservcodes ADD NumServString text(50);"},
    // Appointments link to their claims another way; the column is only looked for.
    {"appointments", "claimid", nullptr},
    {"Patients", "flag", "ALTER TABLE Patients ADD Flag bit;"},
    {"Claims", "allbatches", "ALTER TABLE Claims ADD AllBatches text(250);"},
    {"Claims", "ra", "ALTER TABLE Claims ADD RA text(250);"},
    {"Doctors", "sli", "ALTER TABLE Doctors ADD SLI text(30);"},
}};

struct TableStep {
    const char* table;
    const char* statement;
};

constexpr std::array<TableStep, 4> kTableSteps = {{
    {"hnbatches",
     "Create Table HNBatches (BatchID text(12),MOHUserID text(8),Provider text(6),Operator "
     "text(8),Records long,SubmitDate datetime,FileName Text(12));"},
    {"otherparams", "Create Table OtherParams(ParamName text(50),ParamValue text(50));"},
    {"invoices", "Create Table Invoices (ID long,InvoiceNum text(50));"},
    {"enhfee",
     "Create Table EnhFee (Services text(200),BillDate text(20),Percent1 text(8),Code1 "
     "text(5),Percent2 text(8),Code2 text(5),Percent3 text(8),Code3 text(5),Percent4 "
     "text(8),Code4 text(5),Percent5 text(8),Code5 text(5),Percent6 text(8),Code6 "
     "text(5),Percent7 text(8),Code7 text(5),Percent8 text(8),Code8 text(5));"},
}};

struct IndexStep {
    const char* table;
    const char* column;  // the index is made only once the table has it
    const char* name;
    const char* statement;
};

constexpr std::array<IndexStep, 6> kIndexSteps = {{
    {"patients", "LName", "idx_Patients_LowerLName",
     "CREATE INDEX idx_Patients_LowerLName ON Patients (Lower(LName))"},
    {"appointments", "PatientName", "idx_Appointments_LowerPatientName",
     "CREATE INDEX idx_Appointments_LowerPatientName ON Appointments (Lower(PatientName))"},
    {"claims", "DoctorID", "idx_Claims_DoctorID_ClaimID",
     "CREATE INDEX idx_Claims_DoctorID_ClaimID ON Claims (DoctorID, ClaimID)"},
    {"claims", "DateCreated", "idx_Claims_DateCreated",
     "CREATE INDEX idx_Claims_DateCreated ON Claims (DateCreated)"},
    {"items", "ServiceCode", "idx_Items_LowerServiceCode",
     "CREATE INDEX idx_Items_LowerServiceCode ON Items (Lower(ServiceCode))"},
    {"items", "facility", "idx_Items_facility",
     "CREATE INDEX idx_Items_facility ON Items (facility)"},
}};

bool hasIndex(Database& db, const QString& name) {
    // A server folds the unquoted name to lower case.
    return db.scalar(db.onServer() ? QStringLiteral("Select Count(*) From pg_indexes Where"
                                                    " schemaname=current_schema() And"
                                                    " indexname=Lower(?)")
                                   : QStringLiteral("Select Count(*) From sqlite_master Where"
                                                    " type='index' And Lower(name)=Lower(?)"),
                     {name}, QStringLiteral("looking for index %1").arg(name))
               .toLongLong() > 0;
}

// One step: its look and its statement in one transaction, so that a step the engine refuses
// half way leaves the table as it was, and two programs starting at once never both add the
// same column. True when the statement ran.
template <typename Missing>
bool runStep(Database& db, const QString& statement, const QString& doing, Missing missing,
             QStringList* executed) {
    // Looked at first without a transaction: at most starts nothing is missing, and the
    // write lock is not taken for nothing.
    if (!missing()) {
        return false;
    }
    Transaction step(db, doing);
    if (!missing()) {
        return false;  // another program added it meanwhile
    }
    db.exec(db.dialect().ddl(statement), {}, doing);
    step.commit();
    if (executed) {
        executed->append(statement);
    }
    return true;
}

}  // namespace

bool upgradeSchema(Database& db, QStringList* executed) {
    bool unchanged = true;
    for (const ColumnStep& step : kColumnSteps) {
        if (step.statement == nullptr) {
            continue;
        }
        const QString table = QString::fromLatin1(step.table);
        const QString column = QString::fromLatin1(step.column);
        if (runStep(
                db, QString::fromLatin1(step.statement),
                QStringLiteral("updating table %1").arg(table),
                [&] { return !db.hasColumn(table, column); }, executed)) {
            unchanged = false;
        }
    }
    for (const TableStep& step : kTableSteps) {
        const QString table = QString::fromLatin1(step.table);
        // A new table alone does not ask for a restart: no screen depends on it at start.
        runStep(
            db, QString::fromLatin1(step.statement), QStringLiteral("creating table %1").arg(table),
            [&] { return !db.hasTable(table); }, executed);
    }
    for (const IndexStep& step : kIndexSteps) {
        const QString table = QString::fromLatin1(step.table);
        const QString name = QString::fromLatin1(step.name);
        // Like a new table, a new index needs no restart.
        runStep(
            db, QString::fromLatin1(step.statement), QStringLiteral("indexing table %1").arg(table),
            [&] {
                return db.hasColumn(table, QString::fromLatin1(step.column)) && !hasIndex(db, name);
            },
            executed);
    }
    return unchanged;
}

}  // namespace brimsett
