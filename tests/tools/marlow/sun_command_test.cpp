#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/support/tool.h"
#include "tools/marlow/sun_chart.h"

namespace SharedClasses::tests {
namespace {

// Runs the tool with the words of `line`, which blanks part.
ToolResult run(const std::string& line) {
  std::istringstream words(line);
  return runTool({std::istream_iterator<std::string>(words), {}});
}

TEST(Sun, TellsADayAsTheClocksOfItsZoneShowItAndSaysWhatItCannotMean) {
  struct Row {
    const char* arguments;
    const char* said;  // a part of the output, or of the complaint where it is refused
    int exitCode = 0;
  };
  const Row rows[] = {
      // Times from almanacs, which agree to the minute on these days.
      {"--latitude 40 --longitude -75 --date 2026-07-04 --zone America/New_York", "sunrise 05:36, sunset 20:32, "},
      {"--latitude 40 --longitude -75 --date 2026-07-04 --utc", "sunset 00:32 (after midnight), day length 14:56\n"},
      {"--latitude 40 --longitude -75 --date 2026-07-04 --zone=America/New_York --json",
       "{\"date\":\"2026-07-04\",\"dayLengthMinutes\":896,\"latitude\":40,\"longitude\":-75,\"sun\":\"rises and "
       "sets\",\"sunrise\":\"05:36\",\"sunriseInstant\":\"2026-07-04T09:36:00Z\",\"sunset\":\"20:32\","
       "\"sunsetInstant\":\"2026-07-05T00:32:00Z\",\"zone\":\"America/New_York\"}\n"},
      {"--latitude +35.7 --longitude 139.7 --date 2026-06-21 --utc", "sunrise 19:25 (the day before), sunset 10:00, "},
      {"--date 2026-06-21 --zone US/Eastern", "at 40.7142° N, 74.0064° W (the zone's principal place), times of US/E"},
      {"--latitude 51.5 --longitude 0 --date 2026-01-01 --zone Europe/London", ": sunrise 08:06, sunset 16:02, "},
      {"--latitude 70 --longitude 20 --date 2026-06-21 --zone Europe/Oslo", "Europe/Oslo: the sun does not set\n"},
      {"--latitude 70 --longitude 20 --date 2026-12-21 --utc", ": the sun does not rise\n"},
      {"--latitude -70 --longitude 2 --date 2026-12-21 --utc",
       "S, 2° E (as given), times of UTC: the sun does not set"},
      // Refraction and the sun's own breadth keep it in sight for two days behind the equinox of 23 September.
      {"--latitude 90 --longitude 0 --date 2026-09-24 --utc", ": the sun does not set\n"},
      {"--latitude 90 --longitude 0 --date 2026-09-28 --utc", ": the sun does not rise\n"},
      {"--latitude 40", "--latitude and --longitude are given together", 2},
      {"--latitude 90.1 --longitude 0", "--latitude \"90.1\" is not a number from -90 to 90", 2},
      {"--latitude nan --longitude 0", "--latitude \"nan\" is not", 2},
      {"--latitude 0 --longitude 75W", "--longitude \"75W\" is not a number from -180 to 180", 2},
      {"--zone Europe/Nowhere", "there is no time zone \"Europe/Nowhere\"", 2},
      {"--zone UTC --utc", "--zone and --utc exclude", 2},
      {"--date 2026-1-1", "\"2026-1-1\" is not a day such as", 2},
      {"--date 2026-+1-01", "is not a day such as", 2},
      {"--date 2026-00-10 --utc", "there is no 2026-00-10 in UTC", 2},
      {"--date 2011-12-30 --zone Pacific/Apia", "there is no 2011-12-30 in Pacific/Apia", 2},
      {"--year 26", "--year \"26\" is not a year", 2},
      {"--year 2026 --date 2026-01-01", "--date and --year exclude", 2},
      {"tomorrow", "by options alone", 2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.arguments);
    const ToolResult result = run(std::string("sun ") + row.arguments);
    EXPECT_EQ(result.exitCode, row.exitCode);
    EXPECT_TRUE(result.exitCode == 0 || result.output.empty()) << result.output;
    const std::string& said = row.exitCode == 0 ? result.output : result.complaints;
    EXPECT_NE(said.find(row.said), std::string::npos) << said;
  }
}

TEST(Sun, AYearHasARowForEachDayAndChangesTheClocks) {
  const std::string table = run("sun --year 2028 --latitude 52.52 --longitude 13.405 --zone Europe/Berlin").output;
  EXPECT_EQ(std::ranges::count(table, '\n'), 2 + 366);  // no picture where nobody looks
  const auto sunriseOf = [&](const std::string& day) { return table.substr(table.find(day) + 14, 5); };
  EXPECT_LT(sunriseOf("2028-03-25"), "06:10");
  EXPECT_GT(sunriseOf("2028-03-26"), "06:50");
}

TEST(SunChart, ShowsEachColumnsMeanAndTheLeapDayInTheLast) {
  std::vector<std::optional<double>> hours(366, 12.0);
  std::fill(hours.begin(), hours.begin() + 6, std::nullopt);
  std::fill(hours.begin() + 360, hours.end(), 24.0);
  hours[365] = 6.0;
  const std::vector<std::string> chart = marlow::dayLengthChart(2028, hours, 80, false);
  ASSERT_EQ(chart.size(), 13U);
  EXPECT_EQ(chart[0], " 24 h |");  // (5 * 24 + 6) / 6 = 21 hours
  EXPECT_EQ(chart[1], "      |" + std::string(72, ' ') + ".");
  EXPECT_EQ(chart[6], " 12 h | " + std::string(72, '#'));
  EXPECT_EQ(chart[12].find("Dec"), 7U + 67U);  // 1 December is day 336
  EXPECT_EQ(marlow::dayLengthChart(2028, hours, 80, true)[1], "      |" + std::string(72, ' ') + "▄");
  EXPECT_EQ(marlow::dayLengthChart(2028, hours, 40, false)[6], " 12 h |" + std::string(33, '#'));
  EXPECT_TRUE(marlow::dayLengthChart(2028, hours, 39, false).empty());
}

TEST(Zone, TellsEachZoneByItself) {
  // Clocks change at midnight before 1 March and before 27 October, in leap years too.
  const ToolResult result = run("zone AAA3BBB,J60/0,J300/0 Nowhere/At_All XYZ-5:30");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.complaints.find("no time zone \"Nowhere/At_All\""), std::string::npos) << result.complaints;
  for (const char* part : {"locals use daylight saving: yes; delta 3600 s\n", "-03-01, to day ", "-10-26\n",
                           "XYZ, +0530, standard time\n  locals use daylight saving: no; delta 0 s\n"
                           "  daylight saving time: none this year\n  next transition: none\n"}) {
    EXPECT_NE(result.output.find(part), std::string::npos) << part << "\nnot in\n" << result.output;
  }
  EXPECT_EQ(run("zone").exitCode, 0);
  const std::string json = run("zone --json Australia/Sydney").output;
  EXPECT_NE(json.find("\"localDaylightSavingDelta\":-3600,"), std::string::npos) << json;
}

}  // namespace
}  // namespace SharedClasses::tests
