#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace brimsett {

// A row of the reference table `provincodes`: the program's two-letter code, the name shown
// in messages, and the length a health number has there (none where any length is allowed).
struct ProvinceRow {
    QString code;
    QString name;
    std::optional<int> numberLength;
};

// The rows a new database starts with. Afterwards the table is the office's data: these
// values are not consulted again.
const std::vector<ProvinceRow>& initialProvinceRows();

}  // namespace brimsett
