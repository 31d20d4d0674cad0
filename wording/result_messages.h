// Messages of result codes: one sentence for the user from the number that an operation ended with.
// 0 is success, small negative codes are the system's own for controllers, devices and schedules, and some codes come
// from a serial port, a USB controller, an authorization or a message between programs.
//
// System error numbers are no result codes: on Linux 35, 125, 126 and 127 are a deadlock, a cancelled call and faults
// of keys, and would read as something else; others would read "Error 5". A driver translates them:
//
//   serial port      EAGAIN, EWOULDBLOCK, EBUSY    35  busy (EAGAIN is 11 on Linux)
//                    EINVAL, ENOTTY                22  does not take the settings
//                    ENOENT, ENODEV, ENXIO        -99  not found
//                    EIO                          -98  stopped working
//                    EACCES, EPERM                125  no permission
//   USB controller   EBUSY                 -536870203  in use by another program
//
// Stateless; safe on any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace SharedClasses::Utilities {

// Another program that may hold the controller.
enum class Rival : std::uint8_t {
  Nobody,
  Indigo,
  XTension,
  Classic
};

// One row of the table.
struct ResultMessageRow {
  std::int32_t result;
  Rival rival;           // the row holds only while isIndigoRunning() or its like says that this program runs
  std::string_view key;  // of the text in the default table; empty for 0, which is "OK" in every language
};

// Every code that has a text, in ascending order. Of several rows of one code the first that holds counts; the last has
// no rival. Whether a rival runs is told by the names of processes (system/processes/process_detection.h).
// Kept: so Indigo is blamed wherever it runs, though it may be XTension that holds the controller; and so is it for any
// process with "indigo" in its name. XTension is never blamed for a process named exactly so, which is not found.
[[nodiscard]] std::span<const ResultMessageRow> resultMessageTable();

// `stringForResult:`
// The text for `result`; "Error -88", in English, for a code that is not in the table. Never fails, and logs only what
// the questions for programs and a damaged string table log.
// For -536870203, 126 and -97 it looks which other programs run, which takes some tenths of a second, at the very worst
// half a minute, and serves the run loop of the calling thread meanwhile. A program that cannot be asked for counts as
// not running.
// Kept: a text that the language lacks is empty; it is not replaced by the number.
// Kept: the text for -70 is a format. It comes unfilled, for the caller to put in the address.
[[nodiscard]] std::string stringForResult(std::int32_t result);

}  // namespace SharedClasses::Utilities
