#pragma once

#include <QList>
#include <QString>

namespace brimsett {

class Database;
struct AppSettings;

// One line of a patient search's result list.
struct PatientMatch {
    qint64 id = 0;
    QString name;          // "LName, FName" with switch 8, else "FName LName"
    QString healthNumber;  // HealthNum + " " + VersionCode ("" version: the number alone)
    QString dob;           // "YYYY/MM/DD"
    QString phone;         // HPhone, or WPhone when there is no home phone
};

struct PatientMatches {
    QList<PatientMatch> rows;  // ordered by last name, first name, then id
    bool more = false;         // more patients matched than the list holds
};

// A name as the front desk types it for a search: "Last, First", or a last name alone.
struct TypedName {
    QString last;
    QString first;  // empty when no comma was typed
};
TypedName splitTypedName(const QString& typed);

// The patient finders of the search screens. Typed texts keep the office's wildcards
// ("*" any text, "?" one character); without a wildcard a text matches the values that begin
// with it, or only whole values when switch 7 ("Always use whole text match when searching")
// is on. Case does not matter.
//
// A list holds at most kLimit patients: beyond that the front desk types more of the name
// rather than scrolls, and `more` says there were others.
class PatientSearch {
public:
    static constexpr int kLimit = 200;

    PatientSearch(Database& db, const AppSettings& settings);

    PatientMatches byId(qint64 id);
    // Last name, and the first name when one is typed.
    PatientMatches byName(const QString& lastName, const QString& firstName = {});
    PatientMatches byHealthNumber(const QString& typed);
    // Home or work phone. Only the digits typed count, and they must appear as one run in the
    // digits of the stored phone, whatever its punctuation: "4165551234" and "416-555-1234"
    // find "(416) 555-1234", "5551234" finds it too. Wildcards are not used here; a text
    // without digits finds nothing.
    PatientMatches byPhone(const QString& typed);

private:
    Database& m_db;
    const AppSettings& m_settings;
};

}  // namespace brimsett
