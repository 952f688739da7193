#pragma once

#include <QDateTime>
#include <QString>

namespace brimsett::hcv {

struct HcvSettings;

// The 82-character record of a request: "RPVR0300 ", health number (10), version code (2),
// "********", FX (7), PX (10), MX (8), 8 blanks, 20 "#". Every field is blank-padded to its
// width or cut to its first characters.
QString requestRecord(const HcvSettings& settings, const QString& healthNum,
                      const QString& versionCode);
// HX + "|" + the record (without the line end).
QString requestLine(const HcvSettings& settings, const QString& healthNum,
                    const QString& versionCode);
// "yyyyMMddhhmmss.txt" of the moment.
QString requestFileName(const QDateTime& moment);
// Where a request of that name is written: HO + name as written (a relative HO is taken
// from the office folder; no separator is added), or officeFolder + "HCVOUT/" + name.
QString requestPath(const HcvSettings& settings, const QString& officeFolder,
                    const QString& fileName);
// The answer folder, ending in "/": HI (relative ones from the office folder) or
// officeFolder + "HCVIN/". A trailing "\" of an old setting counts as the separator.
QString answerFolder(const HcvSettings& settings, const QString& officeFolder);

}  // namespace brimsett::hcv
