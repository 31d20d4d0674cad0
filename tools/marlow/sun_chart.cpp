#include "tools/marlow/sun_chart.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "platform/calendar_date.h"
#include "platform/files.h"
#include "platform/saturating.h"
#include "platform/text.h"

namespace SharedClasses::marlow {

namespace {

constexpr std::size_t kSmallestWidth = 40;
constexpr std::size_t kFewestDaysPerColumn = 5;
constexpr int kRows = 12;
constexpr double kHoursPerRow = 2;
constexpr int kRowsPerLabel = 3;

// A cell filled from below: by no eighth, by one, to all eight.
constexpr std::string_view kBlocks[] = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::string_view kSigns[] = {" ", " ", ".", ".", ".", ":", ":", ":", "#"};

constexpr std::string_view kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The mean of the lengths that are known; 0 where none is.
double meanHours(std::span<const std::optional<double>> hours) {
  double sum = 0;
  double count = 0;
  for (const std::optional<double>& length : hours) {
    sum += length.value_or(0);
    count += length ? 1 : 0;
  }
  return count > 0 ? sum / count : 0;
}

// The label of a row, which stands for its upper edge.
std::string rowLabel(int row) {
  std::string label;
  if (row % kRowsPerLabel == 0) {
    label = std::to_string((kRows - row) * static_cast<int>(kHoursPerRow)) + " h";
  }
  return std::string(5 - label.size(), ' ') + label + " |";
}

// Leaves a month out that would touch the one before.
std::string monthLine(std::int64_t year, std::size_t daysPerColumn) {
  std::string line;
  std::size_t day = 0;
  for (int month = 1; month <= 12; ++month) {
    if (const std::size_t column = rowLabel(0).size() + day / daysPerColumn; line.size() < column) {
      line.resize(column, ' ');
      line += kMonths[month - 1];
    }
    day += static_cast<std::size_t>(platform::daysInMonth(year, month));
  }
  return line;
}

}  // namespace

std::vector<std::string> dayLengthChart(std::int64_t year, std::span<const std::optional<double>> hours,
                                        std::size_t width, bool blocks) {
  if (width < kSmallestWidth) {
    return {};
  }
  // The last column takes the days that are left over too.
  std::size_t daysPerColumn = kFewestDaysPerColumn;
  while (hours.size() / daysPerColumn > width - rowLabel(0).size()) {
    ++daysPerColumn;
  }
  const std::size_t columns = hours.size() / daysPerColumn;
  std::vector<std::string> lines(kRows);
  for (int row = 0; row < kRows; ++row) {
    std::string& line = lines[static_cast<std::size_t>(row)];
    line = rowLabel(row);
    for (std::size_t column = 0; column < columns; ++column) {
      const std::size_t first = column * daysPerColumn;
      const std::size_t count = column + 1 == columns ? hours.size() - first : daysPerColumn;
      const double length = meanHours(hours.subspan(first, count));
      const double filled = length / kHoursPerRow - (kRows - 1 - row);  // of this cell
      const auto eighths = platform::saturatingCast<std::uint8_t>(std::round(std::clamp(filled, 0.0, 1.0) * 8));
      line += (blocks ? kBlocks : kSigns)[eighths];
    }
    line.resize(line.find_last_not_of(' ') + 1);
  }
  lines.push_back(monthLine(year, daysPerColumn));
  return lines;
}

bool terminalShowsUTF8() {
  for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    if (const std::string locale = platform::lowercased(platform::environmentVariable(variable).value_or(""));
        !locale.empty()) {
      return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
    }
  }
  return false;
}

}  // namespace SharedClasses::marlow
