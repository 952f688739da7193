// Arbitrary bytes as a health card answer: cut as a line, then taken by a poll of the fuzz
// office's answer folder, where one patient has the number the seed answers carry.
#include "FuzzOffice.h"
#include "foundation/Clock.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/SettingsStore.h"
#include "foundation/SqlLog.h"
#include "hcv/CardExchange.h"
#include "hcv/CardResponse.h"

#include <QDir>
#include <QTemporaryDir>

#include <cstdlib>

namespace {

using namespace brimsett;

void checkCuts(const hcv::CardResponse& r) {
    // The number and the code are fixed-width cuts, the identifier ends at the first "|"
    // (only one leading quote is dropped: '""X' stays '"X'); details always carry a name.
    if (r.healthNum.size() > 10 || r.code.size() > 2 || r.installation.contains(QLatin1Char('|')) ||
        (r.hasDetails && r.lastName.isEmpty() && r.firstName.isEmpty())) {
        std::abort();
    }
}

struct Folders {
    QTemporaryDir dir;
    SettingsStore store{dir.filePath(QStringLiteral("Zandor.ini"))};
    Folders() {
        store.save(QStringLiteral("General"), QStringLiteral("HX"), QStringLiteral("HX01"));
    }
    QString office() const { return dir.path() + QLatin1Char('/'); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    checkCuts(hcv::parseResponseLine(QString::fromLatin1(bytes)));
    for (const QString& line : fuzz::linesOf(data, size)) {
        checkCuts(hcv::parseResponseLine(line));
    }

    fuzz::office();  // makes the application object first
    static Folders f;
    const QString answers = f.office() + QStringLiteral("HCVIN/");
    QDir(answers).removeRecursively();
    QDir().mkpath(answers);
    QFile file(answers + QStringLiteral("1.txt"));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        return 0;
    }
    file.close();
    fuzz::inRolledBackTransaction([&] {
        fuzz::office().exec(
            QStringLiteral("Insert Into patients (PatientID, HealthNum, FName,"
                           " LName) Values (1, '1234567897', 'Ann', 'Old')"));
        SystemClock clock;
        RecordingPrompter prompter;
        hcv::CardExchange exchange(fuzz::office(), f.store, clock, prompter, fuzz::sqlLog(),
                                   f.office());
        exchange.setPollingOn(true);
        for (const hcv::PolledAnswer& answer : exchange.PollCardResponses()) {
            if (answer.message.size() != 5 || answer.fileName != QLatin1String("1.txt")) {
                std::abort();
            }
        }
    });
    return 0;
}
