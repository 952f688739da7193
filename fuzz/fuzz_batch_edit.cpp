// Arbitrary bytes as a batch edit report.
#include "FuzzOffice.h"
#include "ministry/BatchEdit.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brimsett;
    const QStringList lines = fuzz::linesOf(data, size);
    const batchedit::Report report = batchedit::read(lines);
    if (!lines.isEmpty()) {
        batchedit::firstRecordValid(lines.first());
    }
    for (const batchedit::Row& row : report.rows) {
        if (row.cells().size() != batchedit::columns().size()) {
            std::abort();
        }
    }
    return 0;
}
