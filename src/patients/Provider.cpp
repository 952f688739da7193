#include "patients/Provider.h"

#include <QSqlRecord>
#include <QVariant>

namespace brimsett {

const QList<Provider::Column>& Provider::columns() {
    static const QList<Column> list = {
        {Field::DoctorID, "DoctorID", "Doctor ID", 3, &Provider::doctorId},
        {Field::GroupNum, "GroupNum", "Group number", 4, &Provider::groupNum},
        {Field::ProviderNum, "ProviderNum", "Billing number", 6, &Provider::providerNum},
        {Field::SpecCode, "SpecCode", "Specialty", 2, &Provider::specCode},
        {Field::MOHOffice, "MOHOffice", "Ministry office", 1, &Provider::mohOffice},
        {Field::FName, "FName", "First name", 30, &Provider::fName},
        {Field::LName, "LName", "Last name", 30, &Provider::lName},
        {Field::Title, "Title", "Title", 50, &Provider::title},
        {Field::Phone, "Phone", "Phone", 20, &Provider::phone},
        {Field::Fax, "Fax", "Fax", 20, &Provider::fax},
        {Field::Email, "Email", "Email", 50, &Provider::email},
        {Field::LocationCode, "LocationCode", "Location code", 4, &Provider::locationCode},
        {Field::FacilityNum, "FacilityNum", "Facility number", 4, &Provider::facilityNum},
        {Field::ExplCode, "ExplCode", "Explanatory code", 50, &Provider::explCode},
        {Field::Modifier, "Modifier", "Modifier", 3, &Provider::modifier},
        // The column holds 30, but a claim carries at most 4.
        {Field::SLI, "SLI", "SLI", 4, &Provider::sli},
    };
    return list;
}

const Provider::Column& Provider::column(Field field) {
    // The list is written in the order of the enumeration.
    return columns().at(static_cast<int>(field));
}

QString Provider::displayName() const {
    if (lName.isEmpty() || fName.isEmpty()) {
        return lName + fName;
    }
    return lName + QStringLiteral(", ") + fName;
}

Provider Provider::normalised() const {
    Provider p;
    for (const Column& c : columns()) {
        p.*c.member = (this->*c.member).trimmed();
    }
    for (QString* code : {&p.doctorId, &p.groupNum, &p.mohOffice, &p.sli}) {
        *code = code->toUpper();
    }
    if (p.groupNum.isEmpty()) {
        p.groupNum = QStringLiteral("0000");
    }
    return p;
}

Provider Provider::fromRecord(const QSqlRecord& record) {
    Provider p;
    for (const Column& c : columns()) {
        const int index = record.indexOf(c.name);
        if (index >= 0) {
            p.*c.member = record.value(index).toString();
        }
    }
    return p;
}

QString providerSummaryLine(const Provider& provider) {
    QStringList fields;
    for (const QString& value : {provider.doctorId, provider.lName, provider.fName,
                                 provider.providerNum, provider.groupNum, provider.specCode}) {
        fields << QString(value).replace(QLatin1Char('|'), QLatin1Char(' '));
    }
    return fields.join(QLatin1Char('|'));
}

}  // namespace brimsett
