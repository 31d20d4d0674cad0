#include "platform/descriptor.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace SharedClasses::platform {
namespace {

using namespace std::string_literals;
using D = Descriptor;

std::vector<std::uint8_t> bytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

// Data given as text, and as a number in the byte order of the machine.
DescriptorPointer data(FourCharCode type, const std::string& bytes) {
  return D::withData(type, bytesOf(bytes));
}
template <typename Number>
DescriptorPointer number(FourCharCode type, Number value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return data(type, bytes);
}

// `innermost` inside `levels` lists, each of which holds the next `copies` times; null where making one failed.
DescriptorPointer nested(DescriptorPointer innermost, std::size_t levels, std::size_t copies = 1) {
  for (std::size_t level = 0; level < levels; ++level) {
    innermost = D::withItems(std::vector(copies, innermost));
  }
  return innermost;
}

TEST(Descriptor, DescriptionShowsEachTypeOnOneLine) {
  const std::tuple<const char*, DescriptorPointer, const char*> kRows[] = {
      {"plain ones", D::withItems({D::null(), D::boolean(true), data(D::kBoolean, "\0"s)}), "[ null, true, false ]"},
      {"integers", D::withItems({number(D::kInteger16, std::int16_t{-2}), D::integer(40)}), "[ -2, 40 ]"},
      {"wide integer", number(D::kInteger64, INT64_MIN), "-9223372036854775808"},
      {"reals", D::withItems({D::real(-0.5), D::real(1e300), number(D::kReal32, 0.25F)}), "[ -0.5, 1e+300, 0.25 ]"},
      {"codes", D::withItems({D::enumerated(fourCharCode("On  ")), number(D::kType, fourCharCode("\x01'\\\xFF"))}),
       "[ 'On  ', '\\x01\\'\\\\\\xff' ]"},
      {"record", D::withKeyedItems(D::kRecord, {{fourCharCode("name"), D::null()}, {D::kDirectObject, D::null()}}),
       "{ name: null, '----': null }"},
      {"event", D::withKeyedItems(D::kEvent, {{fourCharCode("a1Z9"), D::withItems({})}}), "event{ a1Z9: [ ] }"},
      {"specifier", D::withKeyedItems(D::kObjectSpecifier, {}), "obj{ }"},
      {"text", data(D::kText, "\"\\\n\x01\x7Fé\xE2\x80\xA8\xFF"), "\"\\\"\\\\\\n\\u0001\\u007fé\\u2028\xEF\xBF\xBD\""},
      {"unknown type", data(fourCharCode("alis"), "\x0A\x0B\xFF"), "'alis'($0a0bff$)"},
      {"single", number(D::kReal32, 0.1F), "0.1"},
      {"type and wide integer", D::withItems({D::type(fourCharCode("list")), D::integer64(1LL << 40)}),
       "[ 'list', 1099511627776 ]"},
      {"opaque ones", D::withItems({D::color(0x1234, 0, 0xFF80), D::archive("a")}),
       "[ 'cRGB'($12340000ff80$), '****'($61$) ]"},
      {"null with data", data(D::kNull, "a"), "'null'($61$)"},
      {"boolean too long", data(D::kBoolean, "\1\1"), "'bool'($0101$)"},
      {"integer too short", data(D::kInteger32, "\0\1\2"s), "'long'($000102$)"},
      {"real too short", data(D::kReal64, ""), "'doub'($$)"},
  };
  for (const auto& [name, descriptor, text] : kRows) {
    EXPECT_EQ(descriptor->description(), text) << name;
  }
}

TEST(Descriptor, LongDescriptionsAreCutBetweenCharacters) {
  const std::size_t room = D::kMaximumDescriptionLength - 2;  // quotes
  EXPECT_EQ(D::text(std::string(room, 'a'))->description(), '"' + std::string(room, 'a') + '"');
  EXPECT_EQ(D::text(std::string(room + 1, 'a'))->description(), '"' + std::string(room - 2, 'a') + "…");
  EXPECT_EQ(D::text(std::string(room - 3, 'a') + "éaaaa")->description(), '"' + std::string(room - 3, 'a') + "…");
  EXPECT_EQ(data(D::kColor, std::string(D::kMaximumSize / 2, 'a'))->description().size(), room + 2);
  const auto list = D::withItems(std::vector(1000, D::text(std::string(2000, '\n'))));
  EXPECT_TRUE(list->description().ends_with("n…"));
}

TEST(Descriptor, NumbersCoerceToLongWholeOrNotAtAll) {
  const std::tuple<const char*, DescriptorPointer, std::optional<std::int32_t>> kRows[] = {
      {"boolean", data(D::kBoolean, "\x80"), 1},
      {"short", number(D::kInteger16, std::int16_t{-300}), -300},
      {"wide", number(D::kInteger64, std::int64_t{INT32_MIN}), INT32_MIN},
      {"too wide", number(D::kInteger64, std::int64_t{INT32_MAX} + 1), {}},
      {"whole real", D::real(-2147483648.0), INT32_MIN},
      {"whole single", number(D::kReal32, 16777216.0F), 16777216},
      {"fraction", D::real(0.5), {}},
      {"real too large", number(D::kReal32, 2147483648.0F), {}},
      {"not a number", D::real(std::numeric_limits<double>::quiet_NaN()), {}},
      {"short of four bytes", data(D::kInteger16, "\0\0\0\0"s), {}},
      {"text", D::text("3"), {}},
  };
  for (const auto& [name, descriptor, number] : kRows) {
    EXPECT_EQ(descriptor->coerceToLong(), number) << name;
  }
}

TEST(Descriptor, TextIsRepairedWhenMadeAndWhenRead) {
  EXPECT_EQ(*D::text("a\xFF"), *D::text("a\uFFFD"));
  EXPECT_EQ(data(D::kText, "a\xFF")->stringValue(), "a\uFFFD");
  EXPECT_EQ(data(fourCharCode("TEXT"), "a")->stringValue(), std::nullopt);
}

TEST(Descriptor, ItemsCountFromOneAndTheLastUnderAKeywordIsFound) {
  const auto record = D::withKeyedItems(D::kRecord, {{7, D::integer(1)}, {0, D::null()}, {7, D::integer(2)}});
  EXPECT_EQ(record->itemUnder(7)->coerceToLong(), 2);
  EXPECT_NE(record->itemUnder(0), nullptr);
  EXPECT_EQ(record->itemUnder(8), nullptr);
  EXPECT_EQ(record->item(1)->coerceToLong(), 1);
  EXPECT_EQ(record->keyword(3), 7U);
  for (const std::size_t index : {std::size_t{0}, std::size_t{4}, SIZE_MAX}) {
    EXPECT_EQ(record->item(index), nullptr) << index;
    EXPECT_EQ(record->keyword(index), 0U) << index;
  }
  EXPECT_EQ(D::withItems({D::null()})->itemUnder(0), nullptr) << "the items of a list have no keywords";
}

TEST(Descriptor, WhatDoesNotFitItsTypeIsNotMade) {
  EXPECT_EQ(D::withItems({D::null(), nullptr}), nullptr);
  EXPECT_EQ(D::withKeyedItems(D::kList, {}), nullptr);
  EXPECT_EQ(D::withKeyedItems(D::kText, {}), nullptr);
  EXPECT_EQ(D::withData(D::kList, {}), nullptr);
}

// The bytes are written by hand from the description of the form in the header.
TEST(Descriptor, ByteFormIsBigEndianButForTheData) {
  const std::string bytes =
      "mdscreco\0\0\0\2nameutxt\0\0\0\4Lamp----list\0\0\0\2cRGB\0\0\0\6\xFF\xFF\0\0\x80\0null\0\0\0\0"s;
  const auto built = D::withKeyedItems(
      D::kRecord, {{fourCharCode("name"), D::text("Lamp")},
                   {D::kDirectObject, D::withItems({data(D::kColor, "\xFF\xFF\0\0\x80\0"s), D::null()})}});
  EXPECT_EQ(built->toBytes(), bytesOf(bytes));
  DescriptorError error{"untouched", 1};
  const auto again = D::fromBytes(built->toBytes(), &error);
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(*again, *built);
  EXPECT_EQ(error.message, "untouched");
}

TEST(Descriptor, RefusedBytesAreExplained) {
  const std::tuple<const char*, std::string, const char*, std::size_t> kRows[] = {
      {"signature cut", "mds", "the bytes do not begin with \"mdsc\"", 0},
      {"other signature", "mdsdnull\0\0\0\0"s, "the bytes do not begin with \"mdsc\"", 0},
      {"no descriptor", "mdscnull\0\0\0"s, "the bytes end before the type and the length of the descriptor", 11},
      {"bytes behind", "mdscnull\0\0\0\0ab"s, "the bytes go on for 2 bytes behind the descriptor", 12},
      {"data cut", "mdscutxt\0\0\0\4Lam"s, "the data of 'utxt' end after 3 of their 4 bytes", 15},
      {"list cut", "mdsclist\0\0\0\2null\0\0\0\0nul"s, "the list ends after 1 of its 2 items", 23},
      {"keyword without item", "mdscaevt\0\0\0\1----long\0\0\0"s, "the event ends after 0 of its 1 items", 23},
      {"count beyond belief", "mdscreco\xFF\xFF\xFF\xFF"s, "the record ends after 0 of its 4294967295 items", 12},
      {"length beyond belief", "mdsc\n\0\0\0\xFF\xFF\xFF\xFF"s,
       "the data of '\\x0a\\x00\\x00\\x00' end after 0 of their 4294967295 bytes", 12},
      {"too large", "mdscutxt\0\xFF\xFF\xF5"s + std::string(D::kMaximumSize - 11, ' '),
       "more than the 16777216 bytes that a descriptor may have", D::kMaximumSize},
  };
  for (const auto& [name, bytes, message, offset] : kRows) {
    SCOPED_TRACE(name);
    DescriptorError error;
    EXPECT_EQ(D::fromBytes(bytesOf(bytes), &error), nullptr);
    EXPECT_EQ(D::fromBytes(bytesOf(bytes)), nullptr);
    EXPECT_EQ(error.message, message);
    EXPECT_EQ(error.offset, offset);
  }
}

TEST(Descriptor, NestsTo512AndNoDeeper) {
  const auto deepest = nested(D::null(), D::kMaximumDepth);
  ASSERT_NE(deepest, nullptr);
  EXPECT_EQ(D::withItems({deepest}), nullptr);
  EXPECT_EQ(*D::fromBytes(deepest->toBytes()), *deepest);
  EXPECT_FALSE(*deepest == *nested(D::text(""), D::kMaximumDepth));
  EXPECT_EQ(deepest->description().size(), 2 * 2 * D::kMaximumDepth + 4);
  auto deeper = deepest->toBytes();
  deeper.insert(deeper.begin() + 4, deeper.begin() + 4, deeper.begin() + 12);
  DescriptorError error;
  EXPECT_EQ(D::fromBytes(deeper, &error), nullptr);
  EXPECT_EQ(error.message, "more than 512 lists, records, events and object specifiers stand in one another");
  EXPECT_EQ(error.offset, 4U + 8U * 512U);
}

TEST(Descriptor, SharedItemsCountEachTimeTheyStand) {
  // Sizes double with each level: (1016 + 8) 2^levels - 8 bytes, and 4 in front.
  const auto inner = D::text(std::string(1008, ' '));
  const auto largest = nested(inner, 14, 2);
  ASSERT_NE(largest, nullptr);
  EXPECT_EQ(largest->toBytes().size(), D::kMaximumSize - 4);
  EXPECT_EQ(*largest, *nested(inner, 14, 2));
  EXPECT_EQ(D::withKeyedItems(D::kRecord, {{0, largest}}), nullptr);
  EXPECT_EQ(nested(inner, D::kMaximumDepth, 2), nullptr);
  const std::string filling(D::kMaximumSize - 12, ' ');
  EXPECT_EQ(D::text(filling)->toBytes().size(), D::kMaximumSize);
  EXPECT_EQ(D::text(filling + ' '), nullptr);
  // Items: 2^(levels + 1) - 2.
  EXPECT_NE(nested(D::null(), 17, 2), nullptr);
  EXPECT_EQ(nested(D::null(), 18, 2), nullptr);
  auto most = D::withItems(std::vector(D::kMaximumItemCount, D::null()))->toBytes();
  EXPECT_NE(D::fromBytes(most), nullptr);
  most.insert(most.end(), most.end() - 8, most.end());
  ++most[11];
  DescriptorError error;
  EXPECT_EQ(D::fromBytes(most, &error), nullptr);
  EXPECT_EQ(error.message, "more than the 262144 items that a descriptor may have");
  EXPECT_EQ(error.offset, 4U + 8U + 8U * 262144U);
  EXPECT_EQ(D::withItems({D::text(filling)}), nullptr);
}

TEST(Descriptor, EqualsWhatHasItsTypeDataItemsAndKeywordsInOrder) {
  const auto differentOnes = [] {
    const auto one = D::integer(1);
    const auto two = D::integer(2);
    const auto list = [](std::vector<DescriptorPointer> items) { return D::withItems(std::move(items)); };
    std::vector ones{one, two, D::enumerated(1), D::text(""), D::null(), list({}), list({one, two}), list({two, one})};
    ones.insert(ones.end(), {list({list({}), one}), list({list({one})})});
    for (const FourCharCode code : {1U, 2U}) {
      ones.push_back(D::withKeyedItems(D::kRecord, {{code, one}, {3 - code, one}}));
      ones.push_back(D::withKeyedItems(D::kEvent, {{code, one}, {3 - code, one}}));
    }
    return ones;
  };
  for (std::size_t i = 0; const auto& a : differentOnes()) {
    for (std::size_t j = 0; const auto& b : differentOnes()) {
      EXPECT_EQ(*a == *b, i == j++) << a->description() << " and " << b->description();
    }
    ++i;
  }
}

}  // namespace
}  // namespace SharedClasses::platform
