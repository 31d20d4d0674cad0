#include "platform/zone_file.h"

#include <algorithm>
#include <cstddef>
#include <functional>

#include "platform/gregorian.h"

namespace SharedClasses::platform {

namespace {

constexpr std::string_view kMagic = "TZif";
constexpr std::size_t kReservedBytes = 15;
constexpr std::size_t kLongestFile = std::size_t{1} << 20;
constexpr std::size_t kMostClocks = 256;
constexpr std::size_t kLongestAbbreviation = 64;
constexpr std::int64_t kMargin = std::int64_t{2} * kSecondsPerWeek;  // more than any clock is ahead or behind
constexpr std::size_t kCountBytes = 24;
constexpr std::size_t kClockBytes = 6;

// Takes big-endian numbers off the front. Numbers beyond the end are 0; the callers have checked the sizes before.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : mRest(bytes) {}

  [[nodiscard]] std::string_view rest() const { return mRest; }

  std::string_view take(std::size_t count) {
    const std::string_view taken = mRest.substr(0, count);
    mRest.remove_prefix(taken.size());
    return taken;
  }

  std::uint8_t byte() { return static_cast<std::uint8_t>(unsignedNumber(1)); }
  std::uint32_t count() { return static_cast<std::uint32_t>(unsignedNumber(4)); }
  // Of 4 or 8 bytes, two's complement.
  std::int64_t number(std::size_t width) {
    const std::uint64_t bits = unsignedNumber(width);
    return width == 4 ? static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)) : static_cast<std::int64_t>(bits);
  }

 private:
  std::uint64_t unsignedNumber(std::size_t width) {
    std::uint64_t result = 0;
    for (const char c : take(width)) {
      result = result << 8 | static_cast<unsigned char>(c);
    }
    return result;
  }

  std::string_view mRest;
};

struct Header {
  char version = 0;
  std::size_t utMarks = 0, standardMarks = 0, leapSeconds = 0, transitions = 0, clocks = 0, letters = 0;

  // Of the block that follows, whose instants have `width` bytes. The counts have 32 bits, so nothing overflows.
  [[nodiscard]] std::size_t blockSize(std::size_t width) const {
    return transitions * (width + 1) + clocks * kClockBytes + letters + leapSeconds * (width + 4) + standardMarks +
           utMarks;
  }
};

std::optional<Header> takeHeader(ByteReader& reader) {
  if (reader.take(kMagic.size()) != kMagic) {
    return std::nullopt;
  }
  Header header;
  header.version = static_cast<char>(reader.byte());
  const bool isWhole = reader.take(kReservedBytes).size() == kReservedBytes && reader.rest().size() >= kCountBytes;
  header.utMarks = reader.count();
  header.standardMarks = reader.count();
  header.leapSeconds = reader.count();
  header.transitions = reader.count();
  header.clocks = reader.count();
  header.letters = reader.count();
  return isWhole ? std::optional(header) : std::nullopt;
}

std::optional<ZoneClock> clockOf(ByteReader& reader, std::string_view letters) {
  const std::int64_t offset = reader.number(4);
  const std::uint8_t flag = reader.byte();
  const std::size_t start = reader.byte();
  const std::size_t end = letters.find('\0', start);
  if (offset < -kSecondsPerWeek || offset > kSecondsPerWeek || flag > 1 || end == std::string_view::npos ||
      end - start > kLongestAbbreviation) {
    return std::nullopt;
  }
  ZoneClock clock{static_cast<std::int32_t>(offset), flag == 1, std::string(letters.substr(start, end - start))};
  if (!std::ranges::all_of(clock.abbreviation, [](char c) { return c > ' ' && c <= '~'; })) {
    return std::nullopt;
  }
  if (clock.abbreviation.empty()) {
    clock.abbreviation = offsetText(clock.secondsFromGMT);
  }
  return clock;
}

struct LeapSecond {
  std::int64_t time;   // in the count that has leap seconds
  std::int64_t total;  // of leap seconds, from `time` on
};

// Near enough to the first and last of all dates to be moved about without overflow, and beyond what any clock shows
// then.
std::int64_t boundedUnixTime(std::int64_t unixTime) {
  return std::clamp(unixTime, kFirstSecond + kUnixTimeOfReference - kMargin,
                    kLastSecond + kUnixTimeOfReference + kMargin);
}

// The block after `header`, of whose size the caller is sure.
std::optional<ZoneFile> fileOfBlock(std::string_view block, const Header& header, std::size_t width) {
  if (header.clocks == 0 || header.clocks > kMostClocks ||
      (header.standardMarks != 0 && header.standardMarks != header.clocks) ||
      (header.utMarks != 0 && header.utMarks != header.clocks)) {
    return std::nullopt;
  }
  ByteReader reader(block);
  ByteReader times(reader.take(header.transitions * width));
  ByteReader clocksOfTimes(reader.take(header.transitions));
  ByteReader clocks(reader.take(header.clocks * kClockBytes));
  const std::string_view letters = reader.take(header.letters);

  ZoneFile file;
  for (std::size_t i = 0; i < header.clocks; ++i) {
    auto clock = clockOf(clocks, letters);
    if (!clock) {
      return std::nullopt;
    }
    file.clocks.push_back(*std::move(clock));
  }
  std::vector<LeapSecond> leapSeconds(header.leapSeconds);
  for (LeapSecond& leapSecond : leapSeconds) {
    leapSecond.time = reader.number(width);
    leapSecond.total = reader.number(4);
  }
  const auto isAscending = [](const LeapSecond& a, const LeapSecond& b) { return a.time < b.time; };
  if (std::ranges::adjacent_find(leapSeconds, std::not_fn(isAscending)) != leapSeconds.end()) {
    return std::nullopt;
  }

  auto nextLeapSecond = leapSeconds.begin();
  std::int64_t leapTotal = 0;
  std::int64_t previous = 0;
  for (std::size_t i = 0; i < header.transitions; ++i) {
    const std::int64_t time = times.number(width);
    for (; nextLeapSecond != leapSeconds.end() && nextLeapSecond->time <= time; ++nextLeapSecond) {
      leapTotal = nextLeapSecond->total;
    }
    const ZoneFile::Transition transition{boundedUnixTime(time) - leapTotal - kUnixTimeOfReference,
                                          clocksOfTimes.byte()};
    const bool isInOrder = i == 0 || (time > previous && transition.instant >= file.transitions.back().instant);
    if (!isInOrder || transition.clock >= file.clocks.size()) {
      return std::nullopt;
    }
    file.transitions.push_back(transition);
    previous = time;
  }
  return file;
}

}  // namespace

std::optional<ZoneFile> parsedZoneFile(std::string_view bytes) {
  if (bytes.size() > kLongestFile) {
    return std::nullopt;
  }
  ByteReader reader(bytes);
  auto header = takeHeader(reader);
  std::size_t width = 4;
  if (header && header->version >= '2') {
    // The first block is for old readers; the one with long numbers follows it.
    const std::size_t size = header->blockSize(width);
    header = reader.take(size).size() == size ? takeHeader(reader) : std::nullopt;
    width = 8;
  }
  if (!header || reader.rest().size() < header->blockSize(width)) {
    return std::nullopt;
  }
  auto file = fileOfBlock(reader.take(header->blockSize(width)), *header, width);
  if (!file || width == 4) {
    return file;
  }
  const std::string_view footer = reader.rest();
  const std::size_t end = footer.find('\n', 1);
  if (!footer.starts_with('\n') || end == std::string_view::npos) {
    return std::nullopt;
  }
  file->rule = parsedZoneRule(footer.substr(1, end - 1));
  return file;
}

}  // namespace SharedClasses::platform
