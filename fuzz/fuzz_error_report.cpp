// Arbitrary bytes as a claims error report: read, then applied to the fuzz office.
#include "FuzzOffice.h"
#include "ministry/ErrorReport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brimsett;
    errorreport::ErrorReport report = errorreport::read(fuzz::linesOf(data, size));
    fuzz::inRolledBackTransaction(
        [&] { errorreport::lookUp(fuzz::office(), fuzz::sqlLog(), report, true, true); });
    report.itemCount();
    return 0;
}
