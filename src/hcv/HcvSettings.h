#pragma once

#include <QString>

namespace brimsett {
class SettingsStore;
}

namespace brimsett::hcv {

// The card-check settings: "General" HX, FX, PX, MX, HO, HI, and "Options" TCP1. Read from
// the store at each use, so a change made on another screen counts at once.
struct HcvSettings {
    QString hx;              // installation identifier
    QString fx;              // placed in the request, 7 characters
    QString px;              // 10 characters
    QString mx;              // 8 characters
    QString ho;              // request folder as written (empty: "HCVOUT/" in the office folder)
    QString hi;              // answer folder (empty: "HCVIN/" in the office folder)
    bool pollingOn = false;  // "TCP1" is "1"

    static HcvSettings read(const SettingsStore& store);
    // Writes every key; "TCP1" as "1" or "0" (it counts from the next start).
    void save(SettingsStore& store) const;
};

}  // namespace brimsett::hcv
