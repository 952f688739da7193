#include "cli/TransferOptions.h"

#include "cli/CliSession.h"

#include <QDir>
#include <QThread>

namespace brimsett {

std::optional<TransferOptions::Settled> TransferOptions::settle(CliSession& session,
                                                                const CliArgs& args,
                                                                int* status) const {
    if (session.open() == nullptr) {
        *status = fail(QStringLiteral("the database is not available"));
        return std::nullopt;
    }
    const TransferMethod method = methodFor(session);
    QString problem;
    std::optional<TransferPlaces> settledPlaces = places(session, method, &problem);
    if (!settledPlaces) {
        *status = args.usageError(problem);
        return std::nullopt;
    }
    return Settled{method, std::move(*settledPlaces)};
}

QList<CliOption> TransferOptions::declared() {
    return {{QStringLiteral("method"), QStringLiteral("disk|folder"),
             QStringLiteral("the way to the ministry (else the \"SubmitMethod\" setting)")},
            {QStringLiteral("to"), QStringLiteral("DIR"), QStringLiteral("the disk's folder")}};
}

std::optional<TransferOptions> TransferOptions::read(const CliArgs& args, QString* problem) {
    TransferOptions options;
    options.word = args.argument(0);
    options.to = args.value(QStringLiteral("to"));
    if (args.isSet(QStringLiteral("method"))) {
        const QString method = args.value(QStringLiteral("method"));
        if (method == QLatin1String("disk")) {
            options.method = TransferMethod::Disk;
        } else if (method == QLatin1String("folder")) {
            options.method = TransferMethod::Folder;
        } else {
            *problem = QStringLiteral("unknown method %1 (disk or folder)").arg(method);
            return std::nullopt;
        }
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
