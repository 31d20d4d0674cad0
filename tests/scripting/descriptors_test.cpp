#include "scripting/descriptors.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <random>
#include <stdexcept>

#include "platform/property_list.h"
#include "shared/action_codes.h"
#include "tests/support/captured_log.h"
#include "tests/support/pinned_zone.h"

namespace SharedClasses::Utilities {
namespace {

using platform::Descriptor;
using platform::DescriptorPointer;
using platform::fourCharCode;
using platform::Value;
using Dictionary = Value::Dictionary;
using List = Value::List;

DescriptorPointer data(platform::FourCharCode type, std::string_view bytes) {
  return Descriptor::withData(type, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}
template <typename Number>
DescriptorPointer number(platform::FourCharCode type, Number number) {
  return Descriptor::withData(type, std::bit_cast<std::array<std::uint8_t, sizeof(Number)>>(number));
}
DescriptorPointer keyed(std::vector<Descriptor::Keyed> items, platform::FourCharCode type = Descriptor::kRecord) {
  return Descriptor::withKeyedItems(type, std::move(items));
}
DescriptorPointer list(std::vector<DescriptorPointer> items) {
  return Descriptor::withItems(std::move(items));
}

const auto sText = Descriptor::text("Hall"), sOne = Descriptor::integer(1), sNone = Descriptor::null();
constexpr auto kName = fourCharCode("pnam"), kNote = fourCharCode("Note"), kStatus = fourCharCode("Stat");

TEST(NSObjectWithAEDescObj, GivesThePlainValueOrNone) {
  const tests::PinnedZone zone("Europe/Berlin");
  // Seconds since 1904 of local times: from `date -u`; the ends of the calendar from 400-year cycles of 146097 days.
  const std::tuple<const char*, DescriptorPointer, Value> rows[] = {
      {"null", sNone, {}},
      {"boolean", Descriptor::boolean(false), false},
      {"wide integer in range", number(Descriptor::kInteger64, std::int64_t{-7}), -7},
      {"wide integer beyond it is not cut", number(Descriptor::kInteger64, std::int64_t{1} << 32), {}},
      {"single precision", number(Descriptor::kReal32, 0.25F), 0.25},
      {"double precision", Descriptor::real(0.1), 0.1},
      {"code with its top bit set", number(Descriptor::kType, 0xFE000000U), 0xFE000000U},
      {"missing value", Descriptor::enumerated(fourCharCode("msng")), {}},
      {"winter time", Descriptor::localDateTime(3061152000), platform::Date{-3600}},
      {"time left out in spring", Descriptor::localDateTime(1711852200 + 2082844800LL),
       platform::Date{1711848600.0 - 978307200.0}},
      {"start of the count", Descriptor::localDateTime(0), platform::Date{-3061152000.0 - 3600.0}},
      {"colour", data(Descriptor::kColor, {"\xFF\xFF\0\0\x80\0!", 7}), platform::Color{1, 0, 32768 / 65535.0, 1}},
      {"property list", data(Descriptor::kArchive, "<array><true/></array>"), List{true}},
      {"list leaves out what has no value", list({sOne, sNone, sText}), List{1, "Hall"}},
      {"record", keyed({{kName, sText}, {kStatus, sOne}, {fourCharCode("Else"), sOne}, {kStatus, sNone}}),
       Dictionary{{"name", "Hall"}, {"status", 1}}},
      {"record of one item", keyed({{kName, sText}}), Dictionary{}},
      {"record of one record", keyed({{kName, keyed({{kStatus, sText}, {kName, sOne}})}}), Dictionary{{"Hall", 1}}},
      {"pairs", keyed({{kName, list({sText, sOne, sOne, sText, sText, sNone, sText})}}), Dictionary{{"Hall", 1}}},
      {"event", keyed({{kName, sText}, {Descriptor::kDirectObject, sOne}}, Descriptor::kEvent), 1},
      {"event about nothing", keyed({{kName, sText}}, Descriptor::kEvent), {}},
      {"object specifier", keyed({{kName, sText}}, Descriptor::kObjectSpecifier), {}},
  };
  const tests::CapturedLog log;
  for (const auto& [name, descriptor, value] : rows) {
    EXPECT_EQ(NSObjectWithAEDescObj(descriptor), value) << NSObjectWithAEDescObj(descriptor).description() << name;
  }
  for (const char* type : {"bool", "long", "comp", "sing", "doub", "enum", "type", "ldt ", "cRGB", "****"}) {
    EXPECT_TRUE(NSObjectWithAEDescObj(data(fourCharCodeFromString(type), "abc")).isAbsent()) << type;
  }
  for (const std::int64_t seconds : {3095610825600, -375622272001, INT64_MIN, INT64_MAX}) {
    EXPECT_TRUE(NSObjectWithAEDescObj(Descriptor::localDateTime(seconds)).isAbsent()) << seconds;
  }
  // The calendar's first 53:28 of Berlin's local mean time are of instants before it.
  EXPECT_NE(NSObjectWithAEDescObj(Descriptor::localDateTime(3095610825599)).date(), nullptr);
  EXPECT_NE(NSObjectWithAEDescObj(Descriptor::localDateTime(-375622272000 + 3208)).date(), nullptr);
  EXPECT_TRUE(NSObjectWithAEDescObj(Descriptor::localDateTime(-375622272000 + 3208 - 1)).isAbsent());
  EXPECT_EQ(log.messages(), std::vector<std::string>{});
}

TEST(NSObjectWithAEDescObj, LogsUnknownTypesAndReadsTheDeepest) {
  const tests::CapturedLog log;
  DescriptorPointer deep = list({data(fourCharCode("alis"), "x")});
  Value value = List{};
  for (std::size_t level = 1; level < Descriptor::kMaximumDepth; ++level) {
    deep = level % 2 == 0 ? list({deep}) : keyed({{1, sNone}, {kNote, deep}});
    value = level % 2 == 0 ? Value(List{Value(value)}) : Value(Dictionary{{"notes", value}});
  }
  EXPECT_EQ(NSObjectWithAEDesc(deep.get()), value);
  EXPECT_EQ(log.messages(), std::vector<std::string>{"Conversion of AEDesc to obj failed due to unknown type alis."});
}

TEST(NSObjectWithAEDescObj, LogsAHundredUnknownTypesAndCountsTheRest) {
  const tests::CapturedLog log;
  const auto other = data(Descriptor::kInteger16, "ab"), key = keyed({{kName, list({other})}});
  EXPECT_EQ(NSObjectWithAEDescObj(list({key, list(std::vector(102, other)), sOne})), (List{Dictionary{}, List{}, 1}));
  std::vector<std::string> expected(100, "Conversion of AEDesc to obj failed due to unknown type shor.");
  expected.emplace_back("Conversion of AEDesc to obj failed due to unknown types 3 times more.");
  EXPECT_EQ(log.messages(), expected);
}

TEST(DebugAEDescription, TellsNoDescriptorFromAnEmptyOne) {
  EXPECT_EQ(DebugAEDescription(nullptr), "AEDesc is a null pointer.");
  EXPECT_EQ(DebugAEDescription(sNone.get()), "AEDesc descriptor type is a null type.");
  const tests::CapturedLog log;
  DebugLogAEDesc(list({sOne, sText}).get());
  EXPECT_EQ(log.messages(), std::vector<std::string>{R"(AEDesc: [ 1, "Hall" ])"});
}

struct Nameless : platform::Object {
  std::string className() const override { throw std::runtime_error("no name"); }
  bool respondsToSelector(std::string_view) const override { return false; }
  Value performSelector(std::string_view, std::span<const Value>) override { return {}; }
};

// `innermost` inside `levels` lists, each of which holds the next `copies` times.
Value nested(Value innermost, std::size_t levels, std::size_t copies = 1) {
  for (; levels > 0; --levels) {
    innermost = List(copies, innermost);
  }
  return innermost;
}

TEST(DictionaryObjectIsWritable, LogsTheFirstPartThatIsNot) {
  const Value red = platform::Color{1, 0, 0, 1}, nameless = std::make_shared<Nameless>();
  const std::tuple<const char*, Value, std::string> rows[] = {
      {"absent element", List{1, {}, red}, ""},
      {"colour in a dictionary", List{Dictionary{{"a", {}}, {"b", red}}, nameless}, "Color: rgba(1, 0, 0, 1)"},
      {"object without a name", nameless, "???: ???"},
      {"dictionary too deep", nested(Dictionary{}, 512), "Dictionary: {}"},
      {"shared on every level", nested(7, 513, 2), "List: (7, 7)"},
      {"fine higher up", List{nested(5, 300), nested(nested(5, 300), 212)}, "List: (5)"},
  };
  for (const auto& [name, value, message] : rows) {
    SCOPED_TRACE(name);
    const tests::CapturedLog log;
    EXPECT_FALSE(dictionaryObjectIsWritable(value));
    EXPECT_EQ(log.messages().size(), message.empty() ? 0U : 1U);
    EXPECT_TRUE(message.empty() || log.messages()[0] == "Unwritable class: " + message) << message;
  }
  EXPECT_TRUE(dictionaryObjectIsWritable(nested(7, 512, 2)));  // which the writer would find too large
}

TEST(DictionaryObjectIsWritable, PassesOverWhatTextsKeysAndDatesHold) {
  const struct {
    const char* name;
    Value value;
  } rows[] = {
      {"control character", "\x01"},        {"bad UTF-8", "\xFF"},
      {"bad key", Dictionary{{"\xFF", 1}}}, {"no date", platform::Date{std::nan("")}},
      {"far date", platform::Date{1e12}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(dictionaryObjectIsWritable(row.value));
    EXPECT_FALSE(platform::propertyListAsXML(row.value).has_value());
  }
}

TEST(DictionaryObjectIsWritable, AgreesWithTheWriter) {
  const tests::CapturedLog log;
  List trees = {{}, nested("a", 511), nested("a", 512), nested("a", 513), nested(List{}, 511), nested(List{}, 512)};
  std::mt19937 random(10);
  while (trees.size() < 600) {  // each holds parts made before it, also twice
    List parts = {"a", 0.5, platform::Date{1}, Value::Data{1}, List{}, Dictionary{}, List{true}};
    parts.push_back(random() % 4 > 0 ? Value(1)
                                     : List{{}, platform::Color{}, std::make_shared<Nameless>()}[random() % 3]);
    for (int step = 0; step < 4; ++step) {
      const Value a = parts[parts.size() - random() % 4 - 1], b = parts[random() % parts.size()];
      const Value both = random() % 2 == 0 ? Value(List{a, b}) : Value(Dictionary{{"a", a}, {"b", b}, {"c", {}}});
      parts.push_back(nested(both, random() % 3 == 0 ? 0 : random() % 340));
    }
    trees.push_back(parts.back());
  }
  std::size_t writable = 0;
  for (const Value& tree : trees) {
    const bool isWritable = dictionaryObjectIsWritable(tree);
    EXPECT_EQ(isWritable, platform::propertyListAsXML(tree).has_value());
    writable += isWritable ? 1 : 0;
  }
  EXPECT_TRUE(writable > trees.size() / 5 && writable < trees.size() * 4 / 5) << writable;
}

}  // namespace
}  // namespace SharedClasses::Utilities
