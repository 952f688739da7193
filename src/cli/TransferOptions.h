#pragma once

#include "cli/CliCommand.h"
#include "ministry/ClaimTransfer.h"
#include "ministry/TransferWait.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class CliSession;

// What "submit" and "fetch-answers" share: "WORD [--method disk|folder] [--to DIR]".
struct TransferOptions {
    QString word;  // the file or the doctor
    std::optional<TransferMethod> method;
    QString to;  // the disk folder

    // The two options' declarations.
    static QList<CliOption> declared();
    // None (and the problem) for a method that is neither.
    static std::optional<TransferOptions> read(const CliArgs& args, QString* problem);
    // The method asked for, else the office's "SubmitMethod".
    TransferMethod methodFor(CliSession& session) const;
    // The office folder and the disk folder; none (and the problem) when the disk method has
    // no --to, or --to was given for another method.
    std::optional<TransferPlaces> places(CliSession& session, TransferMethod method,
                                         QString* problem) const;

    // What every transfer command does next: opens the office's database, then settles the
    // method and the places. None when it cannot, with the command's exit status in *status
    // (the reason already told).
    struct Settled {
        TransferMethod method;
        TransferPlaces places;
    };
    std::optional<Settled> settle(CliSession& session, const CliArgs& args, int* status) const;
};

// The command line waits by sleeping, and shows the count on standard error.
class SleepingWait : public TransferWait {
public:
    void pause(int milliseconds) override;
    void status(const QString& text) override;
};

}  // namespace brimsett
