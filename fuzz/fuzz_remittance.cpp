// Arbitrary bytes as a remittance advice: read, then reconciled into the fuzz office.
#include "FuzzOffice.h"
#include "ministry/Remittance.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brimsett;
    remittance::Remittance remittance = remittance::read(fuzz::linesOf(data, size));
    fuzz::inRolledBackTransaction([&] {
        for (const bool i2Full : {false, true}) {
            const remittance::ReconcileCounts counts = remittance::reconcile(
                fuzz::office(), fuzz::sqlLog(), remittance, QStringLiteral("FUZZ.001"),
                remittance::ReconcileOptions{i2Full, true});
            int usable = 0;
            for (const auto& claim : remittance.claims) {
                for (const auto& item : claim.items) {
                    usable += item.usable ? 1 : 0;
                }
            }
            // Every usable item is counted once, and nothing else is.
            if (counts.paid + counts.rejected + counts.unmatched + counts.alreadyRead != usable) {
                std::abort();
            }
        }
    });
    return 0;
}
