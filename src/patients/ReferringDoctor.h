#pragma once

#include <QList>
#include <QString>

class QSqlRecord;

namespace brimsett {

// A referring or family doctor (a row of `DoctorsOther`), known by the six-digit billing
// number that claims and patients carry. Every column is kept as text, as stored.
struct ReferringDoctor {
    enum class Field {
        ProviderNum,
        SpecCode,
        Salutation,
        FName,
        LName,
        Address,
        Address2,
        City,
        Province,
        PostalCode,
        Phone,
        Fax
    };

    // A column of `DoctorsOther`: its name, the label the user knows it by, the most
    // characters it holds, and the member that carries it.
    struct Column {
        Field field;
        QString name;
        QString label;
        int maxLength;
        QString ReferringDoctor::*member;
    };
    static const QList<Column>& columns();
    static const Column& column(Field field);

    QString providerNum;
    QString specCode;
    QString salutation;
    QString fName;
    QString lName;
    QString address;
    QString address2;
    QString city;
    QString province;
    QString postalCode;
    QString phone;
    QString fax;

    QString value(Field field) const { return this->*column(field).member; }
    void setValue(Field field, const QString& text) { this->*column(field).member = text; }

    // "Smith, John", or whichever part is there.
    QString displayName() const;
    // Blanks trimmed; province and postal code in capitals.
    ReferringDoctor normalised() const;
    // A row read with "Select * From DoctorsOther"; NULL columns are empty.
    static ReferringDoctor fromRecord(const QSqlRecord& record);

    bool operator==(const ReferringDoctor&) const = default;
};

}  // namespace brimsett
