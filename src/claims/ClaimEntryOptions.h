#pragma once

#include <QString>

namespace brimsett {

class SettingsStore;

// The claim entry choices that only the options screen sets (section "Options"). They are read
// from the store when claim entry opens, so a change on the options screen shows on the next
// claim screen.
struct ClaimEntryOptions {
    QString defClaim = QStringLiteral("HCP - P");  // program of a claim left without one
    QString defaultClaimSuffix;                    // "A", "B" or "C"; anything else means "A"
    // Receipts and invoices after a save: "...0" asks first, "...1" prints without asking.
    bool recPrint0 = false;
    bool recPrint1 = false;
    bool invPrint0 = false;
    bool invPrint1 = false;
    int lCopies = 1;  // copies of each print
    QString bagType;

    static ClaimEntryOptions read(const SettingsStore& store);
    // Writes the keys read above (the options screen's part).
    void save(SettingsStore& store) const;

    // The suffix a four-character fee code gets: "A", "B" or "C".
    QChar suffix() const;

    bool operator==(const ClaimEntryOptions&) const = default;
};

}  // namespace brimsett
