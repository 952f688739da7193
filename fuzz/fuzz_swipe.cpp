// Arbitrary bytes as a card reader's keystrokes: read, and a card matched to the fuzz office,
// every question answered No.
#include "FuzzOffice.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/DateText.h"
#include "foundation/RecordingPrompter.h"
#include "hcv/SwipeCard.h"
#include "hcv/SwipeMatch.h"
#include "patients/HealthNumbers.h"

#include <cstdlib>

namespace {

using namespace brimsett;

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// A date field is empty or a real date.
void checkDate(const QString& slashed) {
    require(slashed.isEmpty() || datetext::fromSlashed(slashed).isValid());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brimsett;
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const hcv::SwipeResult result = hcv::parseSwipe(text);
    if (result.kind != hcv::SwipeResult::Kind::Card) {
        require(result.problem.size() == 1);
        return 0;
    }
    const hcv::SwipedCard& card = result.card;
    require(result.problem.isEmpty());
    require(hn::ontarioCheck(card.healthNum));
    require(card.versionCode.size() <= 2);
    require(card.sex.isEmpty() || card.sex == QLatin1String("M") || card.sex == QLatin1String("F"));
    checkDate(card.expiry);
    checkDate(card.dob);
    checkDate(card.cardDate);

    fuzz::inRolledBackTransaction([&] {
        Database& db = fuzz::office();
        // The seeds' holder on file with an old version code, and one without a number.
        db.exec(
            QStringLiteral("Insert Into patients (PatientID, FName, LName, HealthNum,"
                           " VersionCode) Values (7, 'Jane', 'Doe', '9876543225', 'ZZ'),"
                           " (8, 'John', 'Smith', NULL, NULL)"));
        db.exec(
            QStringLiteral("Insert Into appointments (AppID, PatientID, PatientName, AppDate,"
                           " AppTime, Status, DoctorID) Values (1, 7, 'Doe, Jane',"
                           " '2026-11-22', 570, 1, '1')"));
        AppSettings settings;
        RecordingPrompter prompter;
        const FixedClock clock(QDateTime(QDate(2026, 11, 22), QTime(10, 0)));
        int requests = 0;
        const hcv::SwipeOutcome outcome =
            hcv::SwipeMatch(db, settings, prompter, clock, fuzz::sqlLog(), true,
                            [&](const QString&, const QString&) { ++requests; })
                .match(card);
        require(requests == 1 && outcome.checkRequested);
        require(!outcome.lines.isEmpty() && !outcome.appointmentLine.isEmpty());
        // Every question was answered No: no patient took the card's number.
        const QVariant taken = db.scalar(
            QStringLiteral("Select Count(*) From patients Where PatientID<>7 And HealthNum=?"),
            {card.healthNum});
        require(taken.toInt() == 0);
    });
    return 0;
}
