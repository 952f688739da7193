#include "foundation/SchemaTables.h"

namespace brimsett::schema {

// No table declares foreign keys: the program keeps its references itself and leaves some
// dangling on purpose (claims without a provider, appointments whose provider was set to
// NULL, providers whose specialty is not listed, items moved between claim numbers while a
// claim is split), so an engine that enforced them would refuse ordinary work.

QString TableDefinition::quotedName() const {
    const QString n = QString::fromLatin1(name);
    return n.contains(QLatin1Char(' ')) ? QLatin1Char('[') + n + QLatin1Char(']') : n;
}

QString TableDefinition::createStatement() const {
    QStringList parts{QString::fromLatin1(columns)};
    if (primaryKey != nullptr) {
        parts << QStringLiteral("PRIMARY KEY (%1)").arg(QString::fromLatin1(primaryKey));
    }
    return QStringLiteral("CREATE TABLE %1 (%2)")
        .arg(quotedName(), parts.join(QStringLiteral(", ")));
}

QStringList TableDefinition::indexStatements() const {
    QStringList statements;
    QString stem = QString::fromLatin1(name);
    stem.replace(QLatin1Char(' '), QLatin1Char('_'));
    for (const char* index : indexes) {
        const QString cols = QString::fromLatin1(index);
        QString suffix = cols;
        suffix.remove(QLatin1Char(' ')).replace(QLatin1Char(','), QLatin1Char('_'));
        suffix.remove(QLatin1Char('(')).remove(QLatin1Char(')'));
        statements << QStringLiteral("CREATE INDEX idx_%1_%2 ON %3 (%4)")
                          .arg(stem, suffix, quotedName(), cols);
    }
    return statements;
}

namespace {

// Patients and what hangs off them.
std::vector<TableDefinition> patientTables() {
    return {
        {"Patients",
         "PatientID Long NOT NULL, HealthNum Text(12), VersionCode Text(2), ExpYear DateTime,"
         " FName Text(50), LName Text(50), DOB DateTime, Sex Text(1), Address Text(50),"
         " City Text(30), Province Text(2), PostalCode Text(10), Country Text(30),"
         " HPhone Text(20), WPhone Text(20), RefDoc Text(6), FamDoc Text(6),"
         " FacilityNum Text(4), AdmitDate DateTime, Notes Text(200), BatchID Text(12),"
         " HNCheckDate DateTime, Response Text(10), Status Long, HL7PatID Text(50), Flag Bit",
         "PatientID",
         // Duplicate test, card answers and swipes look up by number; lists sort by name;
         // finds reach a name by its beginning, whatever its case.
         {"HealthNum", "LName, FName", "HPhone", "Lower(LName)"}},
        {"patientprofilesetup",
         "SectionID Long NOT NULL, Section Text(50), Position Long",
         "SectionID",
         {}},
        {"patientprofiles",
         "ProfileID Long NOT NULL, PatientID Long, SectionID Long, Message Text(255)",
         "ProfileID",
         {"PatientID"}},
        {"alarms",
         "AlarmID Long NOT NULL, HealthNum Text(12), AlarmDate DateTime, Message Text(255)",
         "AlarmID",
         {"HealthNum", "AlarmDate"}},
    };
}

// Providers, referring doctors, payers and the small reference tables.
std::vector<TableDefinition> referenceTables() {
    return {
        {"Doctors",
         "DoctorID Text(3) NOT NULL, GroupNum Text(4), ProviderNum Text(6), SpecCode Text(2),"
         " MOHOffice Text(1), FName Text(30), LName Text(30), Title Text(50), Phone Text(20),"
         " Fax Text(20), Email Text(50), LocationCode Text(4), FacilityNum Text(4),"
         " ExplCode Text(50), Modifier Text(3), SLI Text(30)",
         "DoctorID",
         {}},
        {"DoctorsOther",
         "ProviderNum Text(6) NOT NULL, SpecCode Text(2), Salutation Text(20), FName Text(60),"
         " LName Text(60), Address Text(100), Address2 Text(100), City Text(30),"
         " Province Text(2), PostalCode Text(10), Phone Text(20), Fax Text(20)",
         "ProviderNum",
         {"LName, FName"}},
        {"speccodes", "SpecCode Text(2) NOT NULL, Description Text(80)", "SpecCode", {}},
        {"mohoffices",
         "MOHOffice Text(1) NOT NULL, ClaimCard Text(1), City Text(30)",
         "MOHOffice",
         {}},
        {"provincodes",
         "ProvinCode Text(2) NOT NULL, ProvName Text(30), Format Integer",
         "ProvinCode",
         {}},
        {"ThirdParty",
         "ThirdPartyID Long NOT NULL, Name Text(100), Contact Text(60), Address Text(100),"
         " City Text(30), Province Text(30), PostalCode Text(10), Country Text(30),"
         " Phone Text(20), Email Text(50)",
         "ThirdPartyID",
         {"Name"}},
        // Rows are written as "Values(name, value)" without a column list: two columns only.
        {"EDTParams", "ParamName Text(30) NOT NULL, ParamValue Text(60)", "ParamName", {}},
        {"OtherParams", "ParamName Text(50) NOT NULL, ParamValue Text(50)", "ParamName", {}},
        {"Menus",
         "MenuID Long NOT NULL, SubMenuID Long, Caption Text(50), MenuPosition Long,"
         " Action Long, ActionParam Long, ShortCutMod Long, ShortCutKey Long",
         "MenuID",
         {}},
        {"Reports",
         "RepID Long NOT NULL, ReportID Long, Position Long, FieldName Text(100)",
         "RepID",
         {"ReportID"}},
        // Whether ID names the claim or a running number is the issuing code's business, so
        // neither column is made unique; the look-ups go by number.
        {"Invoices", "ID Long, InvoiceNum Text(50)", nullptr, {"InvoiceNum"}},
    };
}

// Claims and the fee schedule they are priced from.
std::vector<TableDefinition> claimTables() {
    return {
        {"Claims",
         "ClaimID Long NOT NULL, BatchID Text(12) NOT NULL, AcctNum Text(8) NOT NULL,"
         " DoctorID Text(3), PayProg Text(11) NOT NULL, ThirdPartyID Long, PatientID Long,"
         " HealthNum Text(12), VersionCode Text(2), FName Text(50), LName Text(50),"
         " DOB DateTime, Sex Text(1), Province Text(2), RefDoc Text(6), FacilityNum Text(4),"
         " AdmitDate DateTime, RefLab Text(4), ManualReview Bit, RegNum Text(30),"
         " DateCreated DateTime, SLI Text(4), SplitFlag Bit, ACFlag YesNo,"
         " InvoiceNum Text(250), MOHClaim Text(50), AllBatches Text(250), RA Text(250)",
         "ClaimID",
         // Remittance and error reports find claims by account number; batch preparation and
         // the pending list by batch; duplicate checks by patient; payer deletion by payer;
         // past claims by doctor (with the claim, so a date of its items is looked at before
         // the claim is read) and by the day billed.
         {"AcctNum", "BatchID", "PatientID", "ThirdPartyID", "DoctorID, ClaimID", "DateCreated"}},
        // A split part keeps its items' ItemID, so moving them back by ClaimID does not collide
        // unless the claim was edited since (its items renumbered), when the move renumbers.
        {"Items",
         "ClaimID Long NOT NULL, ItemID Long NOT NULL, ServiceCode Text(5), DiagCode Text(4),"
         " NumServ Integer, FeeSubm Currency, ServiceDate DateTime, FeePaid Currency,"
         " Status Integer, Errors Text(22), OrderID Text(50), OrderNum Text(50),"
         " Orderstatus Text(50), PlacerID Text(50), Description1 Text(50),"
         " Description2 Text(50), facility Text(50)",
         "ClaimID, ItemID",
         // Matching an answered item: by claim, code and date; split partners and past claims
         // by date alone; past claims by a code's beginning, whatever its case, and by
         // facility (the few items naming one are listed without reading the rest).
         {"ClaimID, ServiceCode, ServiceDate", "ServiceDate", "Lower(ServiceCode)", "facility"}},
        {"ServiceCodes",
         "ServiceCode Text(5) NOT NULL, Description Text(255), FeeGeneral Currency,"
         " FeeAssistant Currency, UnitsAssistant Integer, FeeSpecialist Currency,"
         " FeeAna Currency, UnitsAna Integer, FeeNonAna Currency, UnitsNonAna Integer,"
         " ReqDiagCode Bit, ReqRefDoctor Bit, ReqFacilityNum Bit, ReqAdmitDate Bit,"
         " ReqManualReview Bit, DateStart DateTime, DateTerm DateTime, InterVal Text(8),"
         " MinimumAge Integer, MaximumAge Integer, Modifier Bit, SpecCode Text(2), Sex Text(1),"
         " PatientID Long, Q200Flag Bit, Prereq Text(200), MinAge2 Long, MaxAge2 Long,"
         " MinAge3 Long, MaxAge3 Long, KeyWords Long",
         "ServiceCode",
         {}},
        {"ServiceCodesDirect",
         "ServiceCode Text(5) NOT NULL, Description Text(50), Fee Currency",
         "ServiceCode",
         {}},
        {"DiagCodes", "DiagCode Text(4) NOT NULL, Description Text(200)", "DiagCode", {}},
        {"ExplCodes",
         "ExplCode Text(2) NOT NULL, Section Text(60), Description Text(120)",
         "ExplCode",
         {}},
        {"EnhFee",
         "Services Text(200), BillDate Text(20), Percent1 Text(8), Code1 Text(5),"
         " Percent2 Text(8), Code2 Text(5), Percent3 Text(8), Code3 Text(5), Percent4 Text(8),"
         " Code4 Text(5), Percent5 Text(8), Code5 Text(5), Percent6 Text(8), Code6 Text(5),"
         " Percent7 Text(8), Code7 Text(5), Percent8 Text(8), Code8 Text(5)",
         nullptr,
         {}},
        {"QuickServCodes",
         "QuickCode Text(10) NOT NULL, Code Text(5), DiagCode Text(4), FeePercent Long,"
         " NumServString Text(50), Description Text(50), NumServ Long, Colour Text(20),"
         " length Long",
         "QuickCode",
         {}},
        {"QuickDiagCodes",
         "QuickCode Text(10) NOT NULL, DiagCode Text(4), Description Text(50)",
         "QuickCode",
         {}},
        {"QuickCityCodes",
         "QuickCode Text(10) NOT NULL, City Text(30), PhoneArea Text(5)",
         "QuickCode",
         {}},
        {"QuickFacCodes",
         "QuickCode Text(10) NOT NULL, FacilityNum Text(4), Description Text(50)",
         "QuickCode",
         {}},
    };
}

// Claim files, card-check batches and the appointment book.
std::vector<TableDefinition> exchangeAndBookTables() {
    return {
        // Batch numbers are unique by construction. The table keeps its rows in insertion
        // order, which "the last row" of batch numbering relies on.
        {"Batches",
         "BatchID Text(12) NOT NULL, MOHOffice Text(1), Operator Text(6), GroupNum Text(4),"
         " ProviderNum Text(6), SpecCode Text(2), H Long, R Long, T Long, Records Long,"
         " Total Currency, FileName Text(20), SubmitDate DateTime",
         "BatchID",
         {"FileName"}},
        {"HNBatches",
         "BatchID Text(12), MOHUserID Text(8), Provider Text(6), Operator Text(8),"
         " Records Long, SubmitDate DateTime, FileName Text(12)",
         nullptr,
         {}},
        // The overnight card-check screen records its files here, apart from HNBatches.
        {"HN batches",
         "BatchID Text(12), FileName Text(12), Records Long, SubmitDate DateTime",
         nullptr,
         {"BatchID"}},
        // No ClaimID: a billed visit is marked by its Status ("Billed"), and claim entry finds
        // the visit by patient, provider and date, never the other way round. The upgrade
        // looks for the column but never adds it, so old and new databases agree.
        {"Appointments",
         "AppID Long NOT NULL, MenuPosition Long, PatientName Text(50), PatientPhone Text(20),"
         " AppDate DateTime, AppTime Long, AppLength Long, SlotType Long, Notes Text(250),"
         " Status Long, ServiceCode Text(5), DiagCode Text(4), PatientID Long,"
         " DoctorID Text(3), Deleted Bit",
         "AppID",
         // Lower(PatientName): a find by the name a caller was booked under reaches its rows
         // by the name's beginning, whatever its case, on either engine.
         {"AppDate, DoctorID", "PatientID", "SlotType", "Lower(PatientName)"}},
        {"AppTemplates",
         "AppTempID Long NOT NULL, DoctorID Text(3), Day Long, TemplateTime Long,"
         " TimeSlot Long",
         "AppTempID",
         {"DoctorID, Day"}},
        {"AppTimeSlots",
         "ID Long NOT NULL, Name Text(50), Description Text(30), Color Long, QuickCode Text(5),"
         " Type Long, DefaultLength Long, DefaultServiceCode Text(5), DefaultDiagCode Text(4)",
         "ID",
         {}},
        {"AppColumns",
         "ID Long NOT NULL, Name Text(50), Visible Bit, Print Bit, Width Long, Align Text(10),"
         " ColumnOrder Long",
         "ID",
         {}},
        // Written by the laboratory requisition program; only looked up here, by text.
        {"realreqstage", "apptid Text(20)", nullptr, {"apptid"}},
    };
}

}  // namespace

const std::vector<TableDefinition>& tableDefinitions() {
    static const std::vector<TableDefinition> all = [] {
        std::vector<TableDefinition> tables;
        for (auto&& group :
             {patientTables(), referenceTables(), claimTables(), exchangeAndBookTables()}) {
            tables.insert(tables.end(), group.begin(), group.end());
        }
        return tables;
    }();
    return all;
}

}  // namespace brimsett::schema
