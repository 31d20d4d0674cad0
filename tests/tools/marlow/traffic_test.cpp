#include "tools/marlow/traffic.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>

namespace SharedClasses::marlow {
namespace {

TEST(ParseTrafficLine, ReadsEveryShapeOfLine) {
  constexpr const char* kDS18B20 = "e9:00:00:05:e2:fd:c3:28";
  const std::vector<std::uint8_t> resetBytes = {0x50, 0x05, 0x4B, 0x46, 0x7F, 0xFF, 0x0C, 0x10, 0x1C};
  struct Row {
    const char* name;
    const char* line;
    const char* address;
    ActionCode action;
    std::optional<double> percent;
    std::vector<std::uint8_t> bytes;
  };
  const Row rows[] = {
      {"unit", "2026-06-01T18:05:00 x10 A1 2", "A1", fourCharCode("On  "), {}, {}},
      {"dim with percentage", "2026-06-01T18:05:00 x10 P16 4 40%", "P16", fourCharCode("Dim "), 40, {}},
      {"fraction of a percent", "2026-06-01T18:05:00 x10 P16 5 12.5%", "P16", fourCharCode("Brit"), 12.5, {}},
      {"unit with a zero in front", "2026-06-01T18:05:00 x10 A01 2", "A1", fourCharCode("On  "), {}, {}},
      {"house letter", "2026-06-01T18:05:00 x10 B 1", "B", fourCharCode("All+"), {}, {}},
      {"whole house drops the unit", "2026-06-01T18:05:00 x10 B4 0", "B", fourCharCode("AOff"), {}, {}},
      {"extended command", "2026-06-01T18:05:00 x10 A4 7 0x31 0x64", "A4", fourCharCode("ExCm"), {}, {0x31, 0x64}},
      {"lower case, tabs, blanks at both ends",
       " 2026-06-01T18:05:00\tx10  a1 15\r",
       "A1",
       fourCharCode("Sta?"),
       {},
       {}},
      {"INSTEON fast on", "2024-02-29T23:59:59 insteon 1a2b3c 0x12", "1A.2B.3C", fourCharCode("On  "), {}, {}},
      {"INSTEON dim", "2024-02-29T23:59:59 insteon 1A.2B.3C 0x16 0%", "1A.2B.3C", fourCharCode("Dim "), 0, {}},
      {"DS18B20",
       "2026-06-01T18:10:00 onewire e9000005e2fdc328 50054b467fff0c101c",
       kDS18B20,
       kNoAction,
       {},
       resetBytes},
      {"its family first",
       "2026-06-01T18:10:00 onewire 28:C3:FD:E2:05:00:00:E9 50:05:4B:46:7F:FF:0C:10:1C",
       kDS18B20,
       kNoAction,
       {},
       resetBytes},
      {"DS18S20",
       "2026-06-01T18:10:00 onewire a4000802715ed610 <aa004b46ffff0c1087>",
       "a4:00:08:02:71:5e:d6:10",
       kNoAction,
       {},
       {0xAA, 0, 0x4B, 0x46, 0xFF, 0xFF, 0x0C, 0x10, 0x87}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::string error = "untouched";
    const auto line = parseTrafficLine(row.line, &error);
    ASSERT_TRUE(line) << error;
    EXPECT_EQ(line->address, row.address);
    EXPECT_EQ(line->action, row.action);
    EXPECT_EQ(line->percent, row.percent);
    EXPECT_EQ(line->bytes, row.bytes);
  }
}

TEST(ParseTrafficLine, SaysWhatIsWrong) {
  struct Row {
    const char* name;
    std::string line;
    const char* complaint;  // a part of it
  };
  std::string bytes;
  for (int i = 0; i < 30; ++i) {
    bytes += " 0x31";
  }
  const Row rows[] = {
      {"too short", "2026-06-01T18:05:00 x10 A1", "are needed"},
      {"day that does not exist", "2026-02-29T18:05:00 x10 A1 2", "is not a time"},
      {"hour 24", "2026-06-01T24:00:00 x10 A1 2", "is not a time"},
      {"no seconds", "2026-06-01T18:05 x10 A1 2", "is not a time"},
      {"protocol", "2026-06-01T18:05:00 zwave A1 2", "is no protocol"},
      {"house Q", "2026-06-01T18:05:00 x10 Q1 2", "not an X10 address"},
      {"unit 17", "2026-06-01T18:05:00 x10 A17 2", "not an X10 address"},
      {"garbled byte behind many", "2026-06-01T18:05:00 x10 A1 7" + bytes + " rubbish", "not a data byte"},
      {"garbled address that could be mended", "2026-06-01T18:05:00 x10 A1? 2", "not an X10 address"},
      {"function 16", "2026-06-01T18:05:00 x10 A1 16", "not an X10 function"},
      {"function beyond 32 bits", "2026-06-01T18:05:00 x10 A1 4294967298", "not an X10 function"},
      {"negative function", "2026-06-01T18:05:00 x10 A1 -2", "not an X10 function"},
      {"on for a house", "2026-06-01T18:05:00 x10 A 2", "needs a unit"},
      {"percentage above 100", "2026-06-01T18:05:00 x10 A1 4 101%", "not a percentage"},
      {"percentage that is not a number", "2026-06-01T18:05:00 x10 A1 4 nan%", "not a percentage"},
      {"percentage of on", "2026-06-01T18:05:00 x10 A1 2 40%", "more than this command takes"},
      {"two percentages", "2026-06-01T18:05:00 x10 A1 4 40% 40%", "more than this command takes"},
      {"byte of three digits", "2026-06-01T18:05:00 x10 A1 7 0x100", "not a data byte"},
      {"unpadded INSTEON address", "2026-06-01T18:05:00 insteon 1.2.3 0x11", "not an INSTEON address"},
      {"decimal command", "2026-06-01T18:05:00 insteon 1A.2B.3C 17", "not a command byte"},
      {"command without an action", "2026-06-01T18:05:00 insteon 1A.2B.3C 0x19", "no action that is known"},
      {"1-Wire address with a wrong CRC", "2026-06-01T18:05:00 onewire ea000005e2fdc328 50054b467fff0c101c",
       "right CRC"},
      {"1-Wire memory", "2026-06-01T18:05:00 onewire d70000000000002d 50054b467fff0c101c", "family 0x2d of"},
      {"pad of eight bytes", "2026-06-01T18:05:00 onewire e9000005e2fdc328 50054b467fff0c10", "not a scratch pad"},
      {"pad with a wrong CRC", "2026-06-01T18:05:00 onewire e9000005e2fdc328 50054b467fff0c101d", "of the scratch pad"},
      {"pad of zeros, a shorted line", "2026-06-01T18:05:00 onewire e9000005e2fdc328 000000000000000000",
       "short circuit"},
      {"pad without counts", "2026-06-01T18:05:00 onewire a4000802715ed610 32000000000000007a", "degree of 0"},
      {"more than a pad", "2026-06-01T18:05:00 onewire e9000005e2fdc328 50054b467fff0c101c 85", "more than a scratch"},
      {"NUL byte", std::string("2026-06-01T18:05:00 x10 A1\0 2", 29), "not an X10 address"},
      {"a thousand fields", "2026-06-01T18:05:00 x10 A1 2" + std::string(1000, ' ') + "x", "more than this command"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::string error;
    EXPECT_FALSE(parseTrafficLine(row.line, &error));
    EXPECT_NE(error.find(row.complaint), std::string::npos) << error;
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
