#include "platform/value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <span>
#include <stdexcept>
#include <thread>

#include "platform/text.h"

namespace SharedClasses::platform {
namespace {

using List = Value::List;
using Dictionary = Value::Dictionary;

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A device that may throw whatever it is asked.
class Lamp : public Object {
 public:
  explicit Lamp(bool hasName, bool hasDescription = true) : mHasName(hasName), mHasDescription(hasDescription) {}
  std::string className() const override { return mHasName ? "Lamp" : throw std::runtime_error("no name"); }
  std::string description() const override { return mHasDescription ? "Lamp\xFF" : throw 1; }
  bool respondsToSelector(std::string_view) const override { return false; }
  Value performSelector(std::string_view, std::span<const Value>) override { return {}; }

 private:
  bool mHasName;
  bool mHasDescription;
};

// `innermost` inside `levels` lists, each of which holds the next `copies` times.
Value nested(Value innermost, int levels, std::size_t copies = 1) {
  for (int level = 0; level < levels; ++level) {
    innermost = List(copies, innermost);
  }
  return innermost;
}

TEST(Value, NumbersReadAsEachOtherAndNothingElseReadsAsANumber) {
  const struct {
    const char* name;
    Value value;
    std::optional<bool> boolean;
    std::optional<std::int64_t> integer;
    std::optional<double> real;
  } kRows[] = {
      {"true", true, true, 1, 1.0},
      {"zero", 0, false, 0, 0.0},
      {"unsigned beyond the range", std::uint64_t{1} << 63, true, kLargest, 0x1p63},
      {"largest unsigned of 32 bits", 4294967295U, true, 4294967295, 4294967295.0},
      {"negative real", -2.9, true, -2, -2.9},
      {"small real", 0.25F, true, 0, 0.25},
      {"huge real", 1e300, true, kLargest, 1e300},
      {"hugely negative real", -1e300, true, kSmallest, -1e300},
      {"text of digits", "12", {}, {}, {}},
      {"null text", static_cast<const char*>(nullptr), {}, {}, {}},
      {"null object", ObjectPointer(), {}, {}, {}},
      {"date", Date{5}, {}, {}, {}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.value.booleanValue(), row.boolean);
    EXPECT_EQ(row.value.integerValue(), row.integer);
    EXPECT_EQ(row.value.realValue(), row.real);
    EXPECT_EQ(row.value.isNumber(), row.real.has_value());
  }
  EXPECT_EQ(Value(kNaN).integerValue(), 0);
  EXPECT_EQ(Value(kNaN).booleanValue(), true);
}

TEST(Value, PointersReachOnlyContentOfTheirType) {
  const auto lamp = std::make_shared<Lamp>(true);
  const Value record(Dictionary{{"name", "Hall"}, {"lamp", lamp}, {"data", Value::Data{1}}, {"hue", Color{1, 0, 0}}});
  ASSERT_NE(record.find("name"), nullptr);
  ASSERT_NE(record.find("name")->text(), nullptr);
  EXPECT_EQ(*record.find("name")->text(), "Hall");
  EXPECT_EQ(record.find("name")->list(), nullptr);
  EXPECT_EQ(record.find("name")->find("name"), nullptr);
  EXPECT_EQ(record.find("lamp")->object(), lamp);
  EXPECT_EQ(record.find("hue")->object(), nullptr);
  EXPECT_EQ(record.find("hue")->color()->red, 1.0);
  EXPECT_EQ(record.find("data")->data()->size(), 1U);
  EXPECT_EQ(record.find("data")->date(), nullptr);
  EXPECT_EQ(record.find("other"), nullptr);
  EXPECT_TRUE(Value(static_cast<const char*>(nullptr)).isAbsent());
  EXPECT_TRUE(Value(ObjectPointer()).isAbsent());
}

TEST(Value, MayBeAssignedFromItsOwnPartsAndMovedFrom) {
  Value value(List{List{Value("inner")}, 2});
  value = (*value.list())[0];
  EXPECT_EQ(value, Value(List{Value("inner")}));
  const Value taken = std::move(value);
  EXPECT_TRUE(value.isAbsent());
  value = taken;
  EXPECT_EQ(value.list(), taken.list());
}

TEST(Value, EqualsWhatHasItsTypeAndContent) {
  const auto lamp = std::make_shared<Lamp>(true);
  const List pair{1, 2};
  const struct {
    const char* name;
    Value a;
    Value b;
    bool equal;
  } kRows[] = {
      {"absent", {}, {}, true},
      {"boolean and integer", true, 1, false},
      {"integer and real", 1, 1.0, false},
      {"NaN", kNaN, -kNaN, true},
      {"NaN and a number", kNaN, 1.0, false},
      {"zeros", 0.0, -0.0, true},
      {"colours with NaN", Color{kNaN, 0, 0}, Color{kNaN, 0, 0}, true},
      {"dates", Date{1}, Date{2}, false},
      {"texts with NUL", std::string("a\0b", 3), std::string("a\0c", 3), false},
      {"data and text", Value::Data{'a'}, "a", false},
      {"lists", pair, pair, true},
      {"longer list", pair, List{1, 2, 3}, false},
      {"other element", pair, List{1, 3}, false},
      {"dictionaries", Dictionary{{"a", 1}}, Dictionary{{"a", 1}}, true},
      {"other key", Dictionary{{"a", 1}}, Dictionary{{"b", 1}}, false},
      {"other entry", Dictionary{{"a", 1}}, Dictionary{{"a", 2}}, false},
      {"empty containers", List{}, Dictionary{}, false},
      {"one object", lamp, lamp, true},
      {"two objects", lamp, std::make_shared<Lamp>(true), false},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.a == row.b, row.equal);
    EXPECT_EQ(row.b == row.a, row.equal);
    EXPECT_EQ(Value(List{row.a}) == Value(List{row.b}), row.equal);
  }
}

TEST(Value, MillionLevelsAreComparedPrintedAndDroppedWithoutDeepStack) {
  constexpr int kLevels = 1'000'000;
  const Value one = nested(1, kLevels);
  EXPECT_TRUE(one == nested(1, kLevels));
  EXPECT_FALSE(one == nested(2, kLevels));
  EXPECT_EQ(one.description().substr(0, 3), "(((");
}

TEST(Value, SharedPartsAreComparedAndPrintedInBoundedTime) {
  const Value doubled = nested(1, 64, 2);
  EXPECT_TRUE(doubled == nested(1, 64, 2));
  EXPECT_FALSE(doubled == nested(2, 64, 2));

  // Where one side holds a list twice, the other holds two lists of the same parts, by turns.
  Value even(List{1, 1});
  Value odd(List{1, 1});
  for (int level = 0; level < 64; level += 2) {
    even = List{Value(List(2, even)), Value(List(2, even))};
    odd = List(2, List{Value(List(*odd.list())), Value(List(*odd.list()))});
  }
  EXPECT_TRUE(even == odd);

  const std::string text = doubled.description();
  EXPECT_LE(text.size(), Value::kMaximumDescriptionLength);
  EXPECT_TRUE(text.ends_with("…"));
}

TEST(Value, CutDescriptionEndsBetweenCharacters) {
  for (const char* lead : {"", "a", "ab"}) {
    std::string text = lead;
    while (text.size() <= Value::kMaximumDescriptionLength) {
      text += "€";
    }
    for (const Value& value : {Value(text), Value(List{text}), Value(Dictionary{{text, 1}})}) {
      const std::string shown = value.description();
      EXPECT_TRUE(isValidUTF8(shown));
      EXPECT_TRUE(shown.ends_with("€…"));
      EXPECT_LE(shown.size(), Value::kMaximumDescriptionLength);
    }
  }
}

TEST(Value, DescriptionShowsEachType) {
  const struct {
    const char* name;
    Value value;
    const char* text;
  } kRows[] = {
      {"absent", {}, "(null)"},
      {"boolean", List{true, false}, "(YES, NO)"},
      {"integer", kSmallest, "-9223372036854775808"},
      {"real", List{0.1, 1e300}, "(0.1, 1e+300)"},
      {"text", "a\n\"b\"", "a\n\"b\""},
      {"malformed text", "a\xFF", "a\xEF\xBF\xBD"},
      {"text inside", List{"a\n\"\\\x1B\xFF"}, "(\"a\\n\\\"\\\\\\x1b\xEF\xBF\xBD\")"},
      {"data", Value::Data{0xAA, 0x00, 0x4B, 0x46, 0xFF, 0xFF, 0x0C, 0x10, 0x87}, "<aa004b46 ffff0c10 87>"},
      {"no data", Value::Data{}, "<>"},
      {"date", Date{730902896.9}, "2024-02-29T12:34:56Z"},  // date -u
      {"date before 2001", Date{-0.5}, "2000-12-31T23:59:59Z"},
      {"date beyond the calendar", Date{1e300}, "1e+300 s from 2001-01-01T00:00:00Z"},
      {"date that is no number", Date{kNaN}, "nan s from 2001-01-01T00:00:00Z"},
      {"colour", Color{1, 0.5, 0, 1}, "rgba(1, 0.5, 0, 1)"},
      {"list", List{1, "two", List{}}, "(1, \"two\", ())"},
      {"dictionary", Dictionary{{"key", 1}, {"other", "x"}}, "{key = 1, other = \"x\"}"},
      {"keys to quote", Dictionary{{"", 1}, {"a = b", Dictionary{}}}, "{\"\" = 1, \"a = b\" = {}}"},
      {"object", std::make_shared<Lamp>(true), "Lamp\xEF\xBF\xBD"},
      {"object without description", std::make_shared<Lamp>(true, false), "Lamp"},
      {"object that throws always", std::make_shared<Lamp>(false, false), "???"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.value.description(), row.text);
  }
}

TEST(Value, CopiesAreMadeAndDroppedOnSeveralThreads) {
  const Value shared(List{Dictionary{{"name", "Hall"}}, "text"});
  const auto copyOften = [shared] {
    for (int i = 0; i < 50'000; ++i) {
      const Value copy(List{shared, (*shared.list())[0]});
      ASSERT_NE((*copy.list())[1].find("name"), nullptr);
    }
  };
  std::thread other(copyOften);
  copyOften();
  other.join();
  EXPECT_EQ(shared.description(), "({name = \"Hall\"}, \"text\")");
}

}  // namespace
}  // namespace SharedClasses::platform
