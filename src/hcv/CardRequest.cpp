#include "hcv/CardRequest.h"

#include "hcv/HcvSettings.h"

#include <QDir>

namespace brimsett::hcv {

namespace {

QString fitted(const QString& text, int width) {
    return text.leftJustified(width, QLatin1Char(' '), true);
}

// A folder of the settings as the program reaches it: a relative one lies in the office.
QString fromOffice(const QString& folder, const QString& officeFolder) {
    return QDir::isRelativePath(folder) ? officeFolder + folder : folder;
}

}  // namespace

QString requestRecord(const HcvSettings& settings, const QString& healthNum,
                      const QString& versionCode) {
    return QStringLiteral("RPVR0300 ") + fitted(healthNum, 10) + fitted(versionCode, 2) +
           QStringLiteral("********") + fitted(settings.fx, 7) + fitted(settings.px, 10) +
           fitted(settings.mx, 8) + QString(8, QLatin1Char(' ')) + QString(20, QLatin1Char('#'));
}

QString requestLine(const HcvSettings& settings, const QString& healthNum,
                    const QString& versionCode) {
    return settings.hx + QLatin1Char('|') + requestRecord(settings, healthNum, versionCode);
}

QString requestFileName(const QDateTime& moment) {
    return moment.toString(QStringLiteral("yyyyMMddHHmmss")) + QStringLiteral(".txt");
}

QString requestPath(const HcvSettings& settings, const QString& officeFolder,
                    const QString& fileName) {
    if (settings.ho.isEmpty()) {
        return officeFolder + QStringLiteral("HCVOUT/") + fileName;
    }
    return fromOffice(settings.ho, officeFolder) + fileName;
}

QString answerFolder(const HcvSettings& settings, const QString& officeFolder) {
    if (settings.hi.isEmpty()) {
        return officeFolder + QStringLiteral("HCVIN/");
    }
    QString folder = fromOffice(settings.hi, officeFolder);
    if (folder.endsWith(QLatin1Char('\\'))) {
        folder.chop(1);
    }
    if (!folder.endsWith(QLatin1Char('/'))) {
        folder += QLatin1Char('/');
    }
    return folder;
}

}  // namespace brimsett::hcv
