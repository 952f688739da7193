// Arbitrary bytes as the ministry's overnight answer file: read from a file, each answer
// stored on its patient in the fuzz office, the failed cards' report built.
#include "FuzzOffice.h"
#include "hcv/OvernightAnswers.h"
#include "hcv/ResponseCodes.h"

#include <QDate>
#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brimsett;
    Database& db = fuzz::office();
    static QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("answers.txt"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        std::abort();
    }
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    fuzz::inRolledBackTransaction([&] {
        // Patients whose numbers the seed files answer, so that inputs reach the storing.
        db.exec(
            QStringLiteral("Insert Into patients (PatientID, HealthNum, VersionCode) Values "
                           "(1, '1111111116', 'AB'), (2, '2222222222', NULL)"));
        const hcv::OvernightResult result = hcv::applyOvernightFile(db, fuzz::sqlLog(), path);
        if (!result.problem.isEmpty()) {
            std::abort();  // a readable file is never refused
        }
        for (const hcv::AppliedOvernight& card : result.cards) {
            // Only ten-digit numbers are answers, and a patient is found only by its number.
            if (card.answer.healthNum.size() != 10 ||
                card.status != hcv::statusClass(card.answer.code) ||
                (card.patientId && card.answer.healthNum != QLatin1String("1111111116") &&
                 card.answer.healthNum != QLatin1String("2222222222"))) {
                std::abort();
            }
        }
        const QVariant odd =
            db.scalar(QStringLiteral("Select Count(*) From patients Where Status Is Not Null And "
                                     "Status Not In (1, 2, 4, 5)"));
        if (odd.toInt() != 0) {
            std::abort();
        }
        hcv::overnightFailureReport(result, QStringLiteral("answers.txt"), QDate(2026, 11, 22));
    });
    return 0;
}
