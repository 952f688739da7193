#pragma once

#include <QList>
#include <QString>

class QSqlRecord;

namespace brimsett {

// One provider of the office (a row of `Doctors`): a physician who bills under the office's
// short code `DoctorID`. Every column is kept as text, as stored.
struct Provider {
    enum class Field {
        DoctorID,
        GroupNum,
        ProviderNum,
        SpecCode,
        MOHOffice,
        FName,
        LName,
        Title,
        Phone,
        Fax,
        Email,
        LocationCode,
        FacilityNum,
        ExplCode,
        Modifier,
        SLI
    };

    // A column of `Doctors`: its name, the label the user knows it by, the most characters it
    // holds, and the member that carries it.
    struct Column {
        Field field;
        QString name;
        QString label;
        int maxLength;
        QString Provider::*member;
    };
    static const QList<Column>& columns();
    static const Column& column(Field field);

    QString doctorId;
    QString groupNum;
    QString providerNum;
    QString specCode;
    QString mohOffice;
    QString fName;
    QString lName;
    QString title;
    QString phone;
    QString fax;
    QString email;
    QString locationCode;
    QString facilityNum;
    QString explCode;
    QString modifier;
    QString sli;

    QString value(Field field) const { return this->*column(field).member; }
    void setValue(Field field, const QString& text) { this->*column(field).member = text; }

    // "Smith, John", or whichever part is there.
    QString displayName() const;

    // Blanks trimmed, codes in capitals, and an empty group number written as "0000", the
    // ministry's group of a solo practitioner, which the claim file needs.
    Provider normalised() const;

    // A row read with "Select * From Doctors"; NULL columns are empty.
    static Provider fromRecord(const QSqlRecord& record);

    bool operator==(const Provider&) const = default;
};

// The receiver's one-line description: DoctorID|LName|FName|ProviderNum|GroupNum|SpecCode.
// A "|" inside a value would shift the fields, so it becomes a blank.
QString providerSummaryLine(const Provider& provider);

}  // namespace brimsett
