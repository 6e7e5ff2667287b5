// What the module asks the radio's driver, in its order: stands before the calls and passes them on, unless a test has
// said how the next one ends. Waits are noted and take no time.
#ifndef ZQUTIL_TESTS_WIRELESS_CALLS_H
#define ZQUTIL_TESTS_WIRELESS_CALLS_H

#include <optional>
#include <string>

// The calls since the last time, one a line:
//   socket | close
//   type INTERFACE TEXT FLAGS
//   range INTERFACE
//   scan INTERFACE
//   scan INTERFACE SIZE FLAGS: essid LENGTH NAME, bssid FAMILY ADDRESS
//   wait MICROSECONDS
//   results INTERFACE SIZE FLAGS
//   statistics INTERFACE SIZE FLAGS
//   status INTERFACE SIZE FLAGS
std::string TakeWirelessCalls();

// The next call of that name ("socket", "type", "range" ...) fails with the error, those after it as further calls of
// this function say, the rest is passed on. `reported` is the length that a failing "results" leaves; -1 keeps it. A
// "wait" that fails leaves half its time.
void FailNext(const std::string& call, int error, int reported = -1);
// What the driver tells of the air, in place of what it would say itself; nothing is the driver's own again. `length` is what the
// driver says that the results have, -1 the truth.
void SetResults(const std::optional<std::string>& bytes, int length = -1);
// With true waits take their time.
void WaitForReal(bool real);

#endif
