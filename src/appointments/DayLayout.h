#pragma once

#include "appointments/AppointmentBook.h"

#include <QList>

// Where each line of a doctor's day sits in its column: bookings that share time are placed
// side by side, never over one another.
namespace brimsett::appointments {

struct PlacedLine {
    DayLine line;
    int lane = 0;       // 0 = leftmost
    int laneCount = 1;  // lanes of the group of lines that overlap it, directly or in a chain
};

// Lines (as dayLines gives them) placed in lanes: each line takes the first lane free at its
// start; the lines of one overlapping group share its lane count. An empty template slot
// takes a lane like an appointment; a cancelled appointment too, so it stays visible. A line
// of no length holds its first minute. The result keeps the order of `lines`.
QList<PlacedLine> placeLines(const QList<DayLine>& lines);

}  // namespace brimsett::appointments
