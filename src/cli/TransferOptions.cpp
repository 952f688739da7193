#include "cli/TransferOptions.h"

#include "cli/CliSession.h"

#include <QDir>
#include <QThread>

namespace brimsett {

std::optional<TransferOptions> TransferOptions::read(const QStringList& args, QString* problem) {
    TransferOptions options;
    QStringList rest = args;
    while (!rest.isEmpty()) {
        const QString word = rest.takeFirst();
        if (word == QLatin1String("--method") && !rest.isEmpty()) {
            const QString method = rest.takeFirst();
            if (method == QLatin1String("disk")) {
                options.method = TransferMethod::Disk;
            } else if (method == QLatin1String("folder")) {
                options.method = TransferMethod::Folder;
            } else {
                *problem = QStringLiteral("unknown method %1 (disk or folder)").arg(method);
                return std::nullopt;
            }
        } else if (word == QLatin1String("--to") && !rest.isEmpty()) {
            options.to = rest.takeFirst();
        } else if (!word.startsWith(QLatin1String("--")) && options.word.isEmpty()) {
            options.word = word;
        } else {
            *problem = QStringLiteral("unexpected %1").arg(word);
            return std::nullopt;
        }
    }
    if (options.word.isEmpty()) {
        *problem = QStringLiteral("missing argument");
        return std::nullopt;
    }
    return options;
}

TransferMethod TransferOptions::methodFor(CliSession& session) const {
    if (method) {
        return *method;
    }
    switch (session.settings().submitMethod) {
        case 1:
            return TransferMethod::DialUp;
        case 2:
            return TransferMethod::Folder;
        default:
            return TransferMethod::Disk;
    }
}

std::optional<TransferPlaces> TransferOptions::places(CliSession& session, TransferMethod method,
                                                      QString* problem) const {
    if (method == TransferMethod::Disk && to.isEmpty()) {
        *problem = QStringLiteral("the disk method needs --to DIR, the disk's folder");
        return std::nullopt;
    }
    if (method != TransferMethod::Disk && !to.isEmpty()) {
        *problem = QStringLiteral("--to is the disk's folder, for --method disk only");
        return std::nullopt;
    }
    return TransferPlaces{session.paths().folder(), to};
}

void SleepingWait::pause(int milliseconds) {
    QThread::msleep(static_cast<unsigned long>(milliseconds));
}

void SleepingWait::status(const QString& text) {
    if (!text.isEmpty()) {
        QTextStream(stderr) << text << "\n";
    }
}

}  // namespace brimsett
