#include "patients/ReferringDoctor.h"

#include <QSqlRecord>
#include <QVariant>

namespace brimsett {

const QList<ReferringDoctor::Column>& ReferringDoctor::columns() {
    using D = ReferringDoctor;
    static const QList<Column> list = {
        {Field::ProviderNum, "ProviderNum", "Billing number", 6, &D::providerNum},
        {Field::SpecCode, "SpecCode", "Specialty", 2, &D::specCode},
        {Field::Salutation, "Salutation", "Salutation", 20, &D::salutation},
        {Field::FName, "FName", "First name", 60, &D::fName},
        {Field::LName, "LName", "Last name", 60, &D::lName},
        {Field::Address, "Address", "Address", 100, &D::address},
        {Field::Address2, "Address2", "Address line 2", 100, &D::address2},
        {Field::City, "City", "City", 30, &D::city},
        {Field::Province, "Province", "Province", 2, &D::province},
        {Field::PostalCode, "PostalCode", "Postal code", 10, &D::postalCode},
        {Field::Phone, "Phone", "Phone", 20, &D::phone},
        {Field::Fax, "Fax", "Fax", 20, &D::fax},
    };
    return list;
}

const ReferringDoctor::Column& ReferringDoctor::column(Field field) {
    // The list is written in the order of the enumeration.
    return columns().at(static_cast<int>(field));
}

QString ReferringDoctor::displayName() const {
    if (lName.isEmpty() || fName.isEmpty()) {
        return lName + fName;
    }
    return lName + QStringLiteral(", ") + fName;
}

ReferringDoctor ReferringDoctor::normalised() const {
    ReferringDoctor d;
    for (const Column& c : columns()) {
        d.*c.member = (this->*c.member).trimmed();
    }
    d.province = d.province.toUpper();
    d.postalCode = d.postalCode.toUpper();
    return d;
}

ReferringDoctor ReferringDoctor::fromRecord(const QSqlRecord& record) {
    ReferringDoctor d;
    for (const Column& c : columns()) {
        const int index = record.indexOf(c.name);
        if (index >= 0) {
            d.*c.member = record.value(index).toString();
        }
    }
    return d;
}

}  // namespace brimsett
