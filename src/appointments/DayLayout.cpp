#include "appointments/DayLayout.h"

#include <algorithm>
#include <numeric>

namespace brimsett::appointments {

namespace {

// A line without length still shows, so it holds its first minute.
int endOf(const DayLine& line) {
    return line.time + std::max(line.length, 1);
}

}  // namespace

QList<PlacedLine> placeLines(const QList<DayLine>& lines) {
    QList<PlacedLine> placed;
    placed.reserve(lines.size());
    for (const DayLine& line : lines) {
        placed.append(PlacedLine{line});
    }
    // Walked by start; a stable sort keeps the book's order among lines of one minute.
    QList<qsizetype> order(lines.size());
    std::iota(order.begin(), order.end(), qsizetype(0));
    std::stable_sort(order.begin(), order.end(), [&lines](qsizetype a, qsizetype b) {
        return lines.at(a).time < lines.at(b).time;
    });

    QList<int> laneEnds;  // per lane, the minute it is free again
    QList<qsizetype> group;
    int groupEnd = 0;
    const auto closeGroup = [&] {
        for (qsizetype index : group) {
            placed[index].laneCount = int(laneEnds.size());
        }
        group.clear();
        laneEnds.clear();
    };
    for (qsizetype index : order) {
        const DayLine& line = lines.at(index);
        if (!group.isEmpty() && line.time >= groupEnd) {
            closeGroup();
        }
        const auto freeLane = std::find_if(laneEnds.begin(), laneEnds.end(),
                                           [&line](int end) { return end <= line.time; });
        const int lane = int(freeLane - laneEnds.begin());
        if (freeLane == laneEnds.end()) {
            laneEnds.append(endOf(line));
        } else {
            *freeLane = endOf(line);
        }
        placed[index].lane = lane;
        groupEnd = group.isEmpty() ? endOf(line) : std::max(groupEnd, endOf(line));
        group.append(index);
    }
    closeGroup();
    return placed;
}

}  // namespace brimsett::appointments
