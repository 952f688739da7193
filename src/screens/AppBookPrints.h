#pragma once

#include "appointments/BookHours.h"

#include <QDate>
#include <QStringList>

class QWidget;

namespace brimsett {

class Database;
class Prompter;
struct AppSettings;

// The appointment book's prints, shown in the print preview.
namespace appbookprints {

// One provider's day sheet. With "PrintOptions" on, the layout and order are asked first
// (the order starting from "AppSortOrder"); off, the default layout in that order is printed.
void printDaySheet(QWidget* parent, Database& db, const AppSettings& settings, Prompter& prompter,
                   const QString& doctorId, const QDate& date,
                   const appointments::ShownHours& hours);
// The day sheets of several providers in the default layout, one after the other in one
// preview; providers without appointments are left out ("No appointments to print." only
// when none has any).
void printDaySheets(QWidget* parent, Database& db, const AppSettings& settings, Prompter& prompter,
                    const QStringList& doctorIds, const QDate& date,
                    const appointments::ShownHours& hours);

}  // namespace appbookprints
}  // namespace brimsett
