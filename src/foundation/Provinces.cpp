#include "foundation/Provinces.h"

namespace brimsett {

const std::vector<ProvinceRow>& initialProvinceRows() {
    // Lengths follow the health number rule of each province; Alberta takes digits of any
    // length and Quebec has no rule of its own, so neither gets one.
    static const std::vector<ProvinceRow> rows = {
        {QStringLiteral("ON"), QStringLiteral("Ontario"), 10},
        {QStringLiteral("AB"), QStringLiteral("Alberta"), std::nullopt},
        {QStringLiteral("BC"), QStringLiteral("British Columbia"), 10},
        {QStringLiteral("MB"), QStringLiteral("Manitoba"), 6},
        {QStringLiteral("NL"), QStringLiteral("Newfoundland and Labrador"), 12},
        {QStringLiteral("NB"), QStringLiteral("New Brunswick"), 9},
        {QStringLiteral("NT"), QStringLiteral("Northwest Territories"), 8},
        {QStringLiteral("NS"), QStringLiteral("Nova Scotia"), 10},
        {QStringLiteral("PE"), QStringLiteral("Prince Edward Island"), 8},
        {QStringLiteral("SK"), QStringLiteral("Saskatchewan"), 9},
        {QStringLiteral("YT"), QStringLiteral("Yukon"), 9},
        {QStringLiteral("QU"), QStringLiteral("Quebec"), std::nullopt},
    };
    return rows;
}

}  // namespace brimsett
