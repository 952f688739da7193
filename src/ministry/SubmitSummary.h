#pragma once

#include <QStringList>

namespace brimsett {

// What a run that sends several files ends with: "Both files were submitted successfully.",
// the counts of sent and unsent files when some failed, or "No files were submitted.".
QStringList submitSummary(int sent, int files);

}  // namespace brimsett
