#pragma once

#include "patients/Provider.h"

#include <QString>

#include <optional>

namespace brimsett {

class Database;

// The office's doctor behind a billing number named in one of the ministry's answers.
namespace answerdoctor {

// By group, provider number and specialty together.
std::optional<Provider> byBillingNumber(Database& db, const QString& group, const QString& provider,
                                        const QString& specialty);
// The same, and when no doctor has that group, by provider number and specialty alone.
std::optional<Provider> byBillingNumberOrProvider(Database& db, const QString& group,
                                                  const QString& provider,
                                                  const QString& specialty);

// How a report names the provider: the doctor's name, or the provider number followed by
// " (Provider not in Brimsett)" when no doctor was found.
QString nameOf(const std::optional<Provider>& doctor, const QString& provider);

}  // namespace answerdoctor
}  // namespace brimsett
