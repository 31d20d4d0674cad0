#include "tools/marlow/traffic.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "platform/text.h"

namespace SharedClasses::marlow {
namespace {

// What a line says: its address, code, percentage and bytes; or why it is refused.
std::string reading(const std::string& line) {
  std::string error;
  const auto read = parseTrafficLine(line, &error);
  return !read ? error
               : "reads " + read->address + ' ' + Utilities::stringFromFourCharCode(read->action) + ' ' +
                     (read->percent ? platform::numberText(*read->percent) : "-") + ' ' +
                     platform::Value(read->bytes).description();
}

TEST(ParseTrafficLine, ReadsEveryShapeOfLineAndSaysWhatIsWrong) {
  std::string bytes;
  for (int i = 0; i < 30; ++i) {
    bytes += " 0x31";
  }
  const struct {
    const char* name;
    std::string line;      // between a time and CR
    const char* expected;  // all that it reads as, or a part of the complaint
    const char* time = " 2024-02-29T23:59:59";
  } kRows[] = {
      {"unit", "x10 A1 2", "reads A1 On   - <>"},
      {"dim with percentage", "x10 P16 4 40%", "reads P16 Dim  40 <>"},
      {"fraction of a percent", "x10 P16 5 12.5%", "reads P16 Brit 12.5 <>"},
      {"unit with a zero in front", "x10 A01 2", "reads A1 On   - <>"},
      {"house letter", "x10 B 1", "reads B All+ - <>"},
      {"whole house drops the unit", "x10 B4 0", "reads B AOff - <>"},
      {"extended command", "x10 A4 7 0x31 0x64", "reads A4 ExCm - <3164>"},
      {"lower case, tabs, blanks at the end", "\tx10\t a1 15 ", "reads A1 Sta? - <>"},
      {"INSTEON fast on", "insteon 1a2b3c 0x12", "reads 1A.2B.3C On   - <>"},
      {"INSTEON dim", "insteon 1A.2B.3C 0x16 0%", "reads 1A.2B.3C Dim  0 <>"},
      {"DS18B20", "onewire e9000005e2fdc328 50054b467fff0c101c",
       "reads e9:00:00:05:e2:fd:c3:28  - <50054b46 7fff0c10 1c>"},
      {"its family first", "onewire 28:C3:FD:E2:05:00:00:E9 50:05:4B:46:7F:FF:0C:10:1C",
       "reads e9:00:00:05:e2:fd:c3:28  - <50054b46 7fff0c10 1c>"},
      {"DS18S20", "onewire a4000802715ed610 <aa004b46ffff0c1087>",
       "reads a4:00:08:02:71:5e:d6:10  - <aa004b46 ffff0c10 87>"},
      {"too short", "x10 A1", "are needed"},
      {"day that does not exist", "x10 A1 2", "is not a time", "2026-02-29T18:05:00"},
      {"hour 24", "x10 A1 2", "is not a time", "2026-06-01T24:00:00"},
      {"no seconds", "x10 A1 2", "is not a time", "2026-06-01T18:05"},
      {"protocol", "zwave A1 2", "is no protocol"},
      {"house Q", "x10 Q1 2", "not an X10 address"},
      {"unit 17", "x10 A17 2", "not an X10 address"},
      {"garbled byte behind many", "x10 A1 7" + bytes + " rubbish", "not a data byte"},
      {"garbled address that could be mended", "x10 A1? 2", "not an X10 address"},
      {"function 16", "x10 A1 16", "not an X10 function"},
      {"function beyond 32 bits", "x10 A1 4294967298", "not an X10 function"},
      {"negative function", "x10 A1 -2", "not an X10 function"},
      {"garbled function", "x10 A1 2x", "not an X10 function"},
      {"on for a house", "x10 A 2", "needs a unit"},
      {"percentage above 100", "x10 A1 4 101%", "not a percentage"},
      {"percentage that is not a number", "x10 A1 4 nan%", "not a percentage"},
      {"percentage of on", "x10 A1 2 40%", "more than this command takes"},
      {"two percentages", "x10 A1 4 40% 40%", "more than this command takes"},
      {"byte of three digits", "x10 A1 7 0x100", "not a data byte"},
      {"unpadded INSTEON address", "insteon 1.2.3 0x11", "not an INSTEON address"},
      {"decimal command", "insteon 1A.2B.3C 17", "not a command byte"},
      {"command without an action", "insteon 1A.2B.3C 0x19", "no action that is known"},
      {"1-Wire address with a wrong CRC", "onewire ea000005e2fdc328 50054b467fff0c101c", "right CRC"},
      {"1-Wire memory", "onewire d70000000000002d 50054b467fff0c101c", "family 0x2d of"},
      {"pad of eight bytes", "onewire e9000005e2fdc328 50054b467fff0c10", "not a scratch pad"},
      {"pad with a wrong CRC", "onewire e9000005e2fdc328 50054b467fff0c101d", "of the scratch pad"},
      {"pad of zeros, a shorted line", "onewire e9000005e2fdc328 000000000000000000", "short circuit"},
      {"pad without counts", "onewire a4000802715ed610 32000000000000007a", "degree of 0"},
      {"more than a pad", "onewire e9000005e2fdc328 50054b467fff0c101c 85", "more than a scratch"},
      {"NUL byte", std::string("x10 A1\0 2", 9), "not an X10 address"},
      {"a thousand fields", "x10 A1 2" + std::string(1000, ' ') + "x", "more than this command"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const std::string shown = reading(std::string(row.time) + ' ' + row.line + '\r');
    EXPECT_NE(shown.find(row.expected), std::string::npos) << shown;
  }
}

TEST(RecordedDay, HoldsEveryActionThatTrafficCarries) {
  std::ifstream file(SOURCE_FOLDER "/examples/recorded_day.txt");
  std::set<ActionCode> seen;
  std::size_t lines = 0;
  for (std::string line; std::getline(file, line);) {
    if (isTrafficComment(line)) {
      continue;
    }
    std::string error;
    const auto parsed = parseTrafficLine(line, &error);
    ASSERT_TRUE(parsed) << line << ": " << error;
    seen.insert(parsed->action);
    ++lines;
  }
  EXPECT_GE(lines, 200U);
  for (const ActionCodeRow& row : actionCodeTable()) {
    const bool carried = row.x10Function != kNotInColumn || row.insteonHeard != kNotInColumn;
    EXPECT_EQ(carried, seen.contains(row.code)) << Utilities::stringFromFourCharCode(row.code);
  }
}

}  // namespace
}  // namespace SharedClasses::marlow
