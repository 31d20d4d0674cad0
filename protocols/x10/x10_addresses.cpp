#include "protocols/x10/x10_addresses.h"

#include "platform/text.h"

namespace SharedClasses {

constexpr std::array<std::uint8_t, 16> gUnitCodes = {0x6, 0xE, 0x2, 0xA, 0x1, 0x9, 0x5, 0xD,
                                                     0x7, 0xF, 0x3, 0xB, 0x0, 0x8, 0x4, 0xC};

namespace X10Utilities {

namespace {

constexpr std::size_t kMaximumAddressLength = 3;  // characters, once the blanks are gone
constexpr std::uint8_t kCodeOfUnitZero = 0xC0;
constexpr std::uint8_t kCodeOfNoUnit = 0xFF;

// The house codes are the unit codes in the high half of a byte: A goes with unit 1, P with unit 16.
constexpr std::array<std::uint8_t, 16> sX10HouseCodes = [] {
  std::array<std::uint8_t, 16> codes{};
  for (std::size_t i = 0; i < codes.size(); ++i) {
    codes[i] = static_cast<std::uint8_t>(gUnitCodes[i] << 4);
  }
  return codes;
}();

// By code: the position in gUnitCodes that holds it.
constexpr std::array<std::uint8_t, 16> sPositionsByCode = [] {
  std::array<std::uint8_t, 16> positions{};
  for (std::size_t i = 0; i < positions.size(); ++i) {
    positions[gUnitCodes[i]] = static_cast<std::uint8_t>(i);
  }
  return positions;
}();

constexpr std::array<char, 16> sASCIIHouseCodes = [] {
  std::array<char, 16> letters{};
  for (std::size_t code = 0; code < letters.size(); ++code) {
    letters[code] = static_cast<char>('A' + sPositionsByCode[code]);
  }
  return letters;
}();

constexpr bool isHouseLetter(char32_t c) {
  return c >= U'A' && c <= U'P';
}

std::int64_t unitOfElement(const platform::Value& element) {
  if (const std::string* address = element.text()) {
    return unitOfAddress(*address);
  }
  return element.integerValue().value_or(0);
}

}  // namespace

char houseOfAddress(std::string_view address) {
  const char32_t first = platform::asciiUpper(platform::decodeCharacter(address).codePoint) & 0xFFU;
  return isHouseLetter(first) ? static_cast<char>(first) : '\0';
}

std::uint8_t unitOfAddress(std::string_view address) {
  const platform::CodePoints characters(address);
  auto character = characters.begin();
  while (character != characters.end() && !platform::isASCIILetter(*character & 0xFFU)) {
    ++character;
  }
  if (character == characters.end()) {
    return 0;
  }
  ++character;
  // Kept: the reduction to 8 bits comes before the test of the range.
  const auto unit = static_cast<std::uint8_t>(platform::lenientInteger(character.rest()));
  return unit <= gUnitCodes.size() ? unit : 0;
}

char asciiFromHouseCode(std::uint8_t houseCode) {
  return (houseCode & 0x0F) != 0 ? 'A' : sASCIIHouseCodes[houseCode >> 4];
}

std::uint8_t houseCodeFromASCII(char letter) {
  const auto upper = static_cast<unsigned char>(letter & ~0x20);
  return sX10HouseCodes[isHouseLetter(upper) ? upper - std::size_t{'A'} : 0];
}

std::optional<std::string> normalizedX10Address(std::string_view address) {
  std::string normalized;
  std::size_t length = 0;
  for (const char32_t character : platform::CodePoints(address)) {
    if (platform::isBlank(character)) {
      continue;
    }
    ++length;
    if (length > kMaximumAddressLength || character == U'.') {
      return std::nullopt;
    }
    const char32_t upper = platform::asciiUpper(character);
    if (isHouseLetter(upper) || platform::isASCIIDigit(upper)) {
      normalized += static_cast<char>(upper);
    }
  }
  return normalized;
}

std::uint8_t unitIDToCode(std::int64_t unit) {
  if (unit == 0) {
    return kCodeOfUnitZero;
  }
  const bool isUnit = unit >= 1 && unit <= std::ssize(gUnitCodes);
  return isUnit ? gUnitCodes[static_cast<std::size_t>(unit - 1)] : kCodeOfNoUnit;
}

std::uint8_t unitCodeToID(int code) {
  const auto low = static_cast<std::uint8_t>(code);
  return low < sPositionsByCode.size() ? static_cast<std::uint8_t>(sPositionsByCode[low] + 1) : 1;
}

std::uint16_t unitBitMapWithUnitIDs(std::span<const platform::Value> units) {
  std::uint32_t map = 0;
  for (const platform::Value& unit : units) {
    map |= std::uint32_t{1} << (unitIDToCode(unitOfElement(unit)) % 32);
  }
  return static_cast<std::uint16_t>(map);
}

platform::Value::List unitIDsWithUnitBitMapAndHouse(std::uint16_t map, std::optional<std::string_view> house) {
  platform::Value::List units;
  for (int code = 0; code < 16; ++code) {
    if ((map >> code & 1) == 0) {
      continue;
    }
    const int unit = unitCodeToID(code);
    units.push_back(house ? platform::Value(std::string(*house) + std::to_string(unit)) : platform::Value(unit));
  }
  return units;
}

}  // namespace X10Utilities

}  // namespace SharedClasses
