#pragma once

#include "hcv/SwipeCard.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace brimsett {
class Clock;
class Database;
class Prompter;
class SqlLog;
struct AppSettings;
}  // namespace brimsett

namespace brimsett::hcv {

struct SwipeOutcome {
    // The register's patient the card belongs to, found or accepted; none for a new one.
    std::optional<qint64> patientId;
    // The lines the swipe screen shows, in order: "This patient is already in the database.
    // (ID: n)" and the "... updated. (ID: n)" line, or "New patient (not in database)." and
    // "No Patient with this Health Card Number was found." when nothing matched.
    QStringList lines;
    // "Has an appointment for today at 9:30 AM with <doctor>." or "No appointment for today."
    QString appointmentLine;
    bool checkRequested = false;
};

// Brings the register up to date from a swiped card:
//  - a patient with the card's health number gets the card's version code, expiry and birth
//    date where they differ ("Version code, ", "Expity Date, ", "Date of birth, " + " updated.
//    (ID: n)");
//  - otherwise each patient without a health number whose names match the card's (either
//    order) is offered under "Possible Existing Patient" (Yes takes it and writes the card's
//    names, health number, version code, expiry and birth date into it, the names not when
//    switch 21 is on; No goes to the next; Cancel means a new patient);
//  - today's appointment of the patient (by id, or by the name for a new one) is looked up;
//  - with polling on, `requestCheck` is asked for the card (force false).
// Each change is one transaction, logged after its commit.
class SwipeMatch {
public:
    using RequestCheck = std::function<void(const QString& healthNum, const QString& versionCode)>;

    SwipeMatch(Database& db, const AppSettings& settings, Prompter& prompter, const Clock& clock,
               const SqlLog& log, bool pollingOn = false, RequestCheck requestCheck = {});

    // Only for a card that parsed (SwipeResult::Kind::Card).
    SwipeOutcome match(const SwipedCard& card);

private:
    // The card's differing version code, expiry and birth date written; the line saying so,
    // empty when nothing differed.
    QString bringUpToDate(qint64 id, const SwipedCard& card);
    // The patient without a number the desk accepted as the card's holder.
    std::optional<qint64> offerCandidates(const SwipedCard& card);
    // False (told why, nothing written) when another patient has the number by now.
    bool takeCard(qint64 id, const SwipedCard& card);
    QString appointmentToday(const std::optional<qint64>& patientId, const SwipedCard& card);

    Database& m_db;
    const AppSettings& m_settings;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    bool m_pollingOn;
    RequestCheck m_requestCheck;
};

}  // namespace brimsett::hcv
