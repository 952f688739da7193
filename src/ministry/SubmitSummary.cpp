#include "ministry/SubmitSummary.h"

namespace brimsett {

QStringList submitSummary(int sent, int files) {
    const QString success = QStringLiteral(" submitted successfully.");
    if (sent == 0) {
        return {QStringLiteral("No files were submitted.")};
    }
    if (sent == files) {
        if (sent == 1) {
            return {QStringLiteral("The file was") + success};
        }
        if (sent == 2) {
            return {QStringLiteral("Both files were") + success};
        }
        return {QStringLiteral("All %1 files were").arg(sent) + success};
    }
    const int failed = files - sent;
    return {QStringLiteral("%1 file%2 submitted successfully,")
                .arg(sent)
                .arg(sent == 1 ? QStringLiteral(" was") : QStringLiteral("s were")),
            QStringLiteral("%1 file%2 not submitted.")
                .arg(failed)
                .arg(failed == 1 ? QStringLiteral(" was") : QStringLiteral("s were"))};
}

}  // namespace brimsett
