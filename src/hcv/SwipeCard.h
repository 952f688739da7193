#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

// The first track of a provincial health card, as a magnetic-stripe reader types it.
namespace brimsett::hcv {

struct SwipedCard {
    QString healthNum;    // 10 characters
    QString lastName;     // name-cased
    QString firstName;    // name-cased; empty without "/" or "?"
    QString middleName;   // name-cased
    QString expiry;       // "YYYY/MM/DD" (day 01), empty for "0000"
    QString sex;          // "M" for "1", otherwise "F"
    QString dob;          // "YYYY/MM/DD"
    QString versionCode;  // upper case, trimmed, at most 2 characters
    QString cardDate;     // the further card date "YYMMDD" as "YYYY/MM/DD"
};

struct SwipeResult {
    enum class Kind {
        Card,           // card holds the holder's data
        NotHealthCard,  // the first 8 characters are none of the accepted prefixes
        InvalidNumber,  // the number fails the Ontario check
        InvalidCard,    // the name field has no end
    };
    Kind kind = Kind::NotHealthCard;
    SwipedCard card;  // the health number is set from InvalidNumber on
    // What the user is told when kind is not Card (title "Error", exclamation icon):
    // "This is not a health card." / "Invalid Health Card Number " + number / "Invalid Card".
    QStringList problem;
};

// The eight accepted beginnings: "%B610054", "%b610054", "%B^10054", "%b^10054" and the same
// with "5" for "%" (a reader whose shift state is lost or inverted).
bool hasCardPrefix(const QString& text);

// Takes the holder's data out of the swiped text; carriage returns anywhere are removed
// first. Never fails on short or odd text: what cannot be cut stays empty, and so does a
// date that is not one.
SwipeResult parseSwipe(const QString& text);

// Two-digit years below 30 are 20xx, the others 19xx. "YYMMDD" -> "YYYY/MM/DD"; empty when
// the text is not six digits or not a date.
QString widenShortDate(const QString& yymmdd);

enum class CardState { NoExpiry, Valid, Expired };
// Today as "YYYY/MM/DD" compared with the expiry text: an expiry before today is Expired.
CardState cardState(const SwipedCard& card, const QDate& today);

// "YYYY " + year + " MM " + month + " DD" + day for a "YYYY/MM/DD" text; "(n/a)" for an
// empty or short one.
QString birthDateShown(const QString& dob);

}  // namespace brimsett::hcv
