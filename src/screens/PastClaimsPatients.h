#pragma once

#include "foundation/Money.h"
#include "ministry/PastClaims.h"
#include "reports/Report.h"

class QWidget;

namespace brimsett {

// The patients behind the past-claims filters, one line each, with how many were found and
// the grand total, in a window of its own over parent ("lstPatients", "lblPatientsFound",
// "lblGrandTotal"); Alt+P prints the list, Esc closes. Returns the window, deleted when
// closed.
QWidget* showPatientList(const QList<pastclaims::PatientLine>& lines, MoneyFormat money,
                         const reports::ReportStyle& style, QWidget* parent);

}  // namespace brimsett
