#pragma once

#include "TestSupport.h"

#include <QProcess>

namespace brimsett::test {

// What brimsett-cli did when run on an office.
struct CliResult {
    int status = -1;
    QString out;
    QString err;
};

// Runs brimsett-cli on the office's folder and settings, with `input` (else nothing) on
// standard input and $BRIMSETT_PASSWORD only when a password is given.
inline CliResult cli(const TempOffice& office, const QStringList& args,
                     const QString& password = {}, const QByteArray& input = {}) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("BRIMSETT_PASSWORD"));
    if (!password.isNull()) {
        env.insert(QStringLiteral("BRIMSETT_PASSWORD"), password);
    }
    p.setProcessEnvironment(env);
    p.setProgram(QStringLiteral(BRIMSETT_CLI));
    p.setArguments(QStringList{"--home", office.folder(), "--settings", office.settingsFile()} +
                   args);
    p.start();
    p.write(input);
    p.closeWriteChannel();
    if (!p.waitForFinished(60000)) {
        p.kill();
        return {};
    }
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

}  // namespace brimsett::test
