#pragma once

#include "patients/ReferringDoctor.h"

#include <QList>
#include <QString>

namespace brimsett {

class Database;
struct AppSettings;

struct ReferringDoctorMatches {
    QList<ReferringDoctor> rows;  // ordered by last name, first name, then number
    bool more = false;            // more doctors matched than the list holds
};

// Finding referring doctors by what the user typed into one box:
//  - a text that begins with a digit is a billing number (or its beginning);
//  - otherwise a last name, or "last, first" with a comma;
//  - an empty text lists everyone.
// The office's wildcards work ("*" any text, "?" one character); without one a text matches
// the values that begin with it, or only whole values when switch 7 ("Always use whole text
// match when searching") is on. Case does not matter.
class ReferringDoctorSearch {
public:
    static constexpr int kLimit = 200;

    ReferringDoctorSearch(Database& db, const AppSettings& settings)
        : m_db(db), m_settings(settings) {}

    ReferringDoctorMatches find(const QString& typed);

private:
    Database& m_db;
    const AppSettings& m_settings;
};

}  // namespace brimsett
