#include "hcv/CardResponse.h"

#include "foundation/DateText.h"
#include "hcv/ResponseCodes.h"

#include <QFile>

#include <optional>

namespace brimsett::hcv {

namespace {

// An answer line is some two hundred characters; a file of anything else is not read whole.
constexpr qint64 kLongestLine = 65536;

// The text before the next "|" of rest, which then loses it and its "|"; none (and rest left
// as it is) when no "|" follows.
std::optional<QString> cut(QString& rest) {
    const qsizetype bar = rest.indexOf(QLatin1Char('|'));
    if (bar < 0) {
        return std::nullopt;
    }
    QString field = rest.left(bar);
    rest.remove(0, bar + 1);
    return field;
}

void readDetails(QString rest, CardResponse& r) {
    const std::optional<QString> version = cut(rest);
    const std::optional<QString> last = version ? cut(rest) : std::nullopt;
    const std::optional<QString> first = last ? cut(rest) : std::nullopt;
    const std::optional<QString> sex = first ? cut(rest) : std::nullopt;
    r.versionCode = version.value_or(QString());
    r.lastName = last.value_or(QString()).trimmed();
    r.firstName = first.value_or(QString()).trimmed();
    r.sex = sex.value_or(QString());
    if (sex) {
        const QString dob = cut(rest).value_or(rest).trimmed();
        if (!dob.isEmpty()) {
            r.dob = datetext::fromYyyymmdd(dob.left(8));
        }
    }
    // Details without a name are a garbled answer: storing them would blank the patient's
    // names, so the answer is kept to its code.
    r.hasDetails = !r.lastName.isEmpty() || !r.firstName.isEmpty();
}

}  // namespace

CardResponse parseResponseLine(const QString& line) {
    CardResponse r;
    QString rest = line;
    const std::optional<QString> installation = cut(rest);
    if (!installation) {
        return r;
    }
    r.installation = *installation;
    if (r.installation.startsWith(QLatin1Char('"'))) {
        r.installation.remove(0, 1);
    }
    r.healthNum = rest.mid(9, 10);
    if (!cut(rest)) {
        return r;
    }
    r.code = rest.left(2);
    // The code, its "|", and one field nobody reads.
    rest.remove(0, 3);
    if (!cut(rest) || rest.trimmed().isEmpty()) {
        return r;
    }
    readDetails(rest, r);
    return r;
}

CardResponse readResponseFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    // A carriage return alone ends a line too, as it did for the program that wrote them.
    QByteArray line = file.readLine(kLongestLine);
    for (const char end : {'\r', '\n'}) {
        if (const qsizetype at = line.indexOf(end); at >= 0) {
            line.truncate(at);
        }
    }
    return parseResponseLine(QString::fromLatin1(line));
}

QStringList answerLines(const QString& healthNum, const QString& versionCode,
                        const QString& lastName, const QString& firstName, const QDate& dob,
                        const QString& sex, const QString& code) {
    return {
        QStringLiteral("HN: ") + healthNum + QStringLiteral(" VC: ") + versionCode,
        QStringLiteral("Name: ") + lastName + QStringLiteral(", ") + firstName,
        QStringLiteral("DOB: ") + datetext::slashed(dob) + QStringLiteral(" Sex: ") + sex,
        QStringLiteral("Response Code: ") + code,
        QStringLiteral("Response Message: ") + ResponseMessage(code),
    };
}

QStringList answerLines(const CardResponse& response) {
    return answerLines(response.healthNum, response.versionCode, response.lastName,
                       response.firstName, response.dob, response.sex, response.code);
}

}  // namespace brimsett::hcv
