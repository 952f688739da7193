#pragma once

#include "TestSupport.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "foundation/SqlLog.h"

namespace brimsett::test {

// An office with a full, empty database, default settings, a scripted prompter, a clock
// pinned to 2026/11/22 10:00 and the SQL log (off unless a test turns it on).
struct OfficeFixture {
    TempOffice office;
    std::unique_ptr<Database> db = office.emptyDatabase();
    AppSettings settings;
    RecordingPrompter prompter;
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(10, 0))};
    SqlLog log{OfficePaths(office.folder()), false};

    OfficeFixture() { schema::create(*db); }
};

}  // namespace brimsett::test
