#pragma once

// Moments at which the tests that kill the program mid-work may end it, as `kill -9` would.
// Set BRIMSETT_KILL_AT to a point's name ("claimfile-placed") or to "statement:N" (before the
// Nth statement the process runs); without it nothing here does anything. The kill tests use
// it to prove that a preparation killed at any moment leaves the office whole.
namespace brimsett::killpoints {

// Ends the process at once when BRIMSETT_KILL_AT names this point.
void reach(const char* point);

// Counts one statement; ends the process when it is the one named.
void statement();

}  // namespace brimsett::killpoints
