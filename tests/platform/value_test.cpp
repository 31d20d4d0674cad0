#include "platform/value.h"

#include <gtest/gtest.h>

#include <limits>
#include <span>
#include <stdexcept>
#include <thread>

#include "platform/text.h"

namespace SharedClasses::platform {
namespace {

using List = Value::List;
using Dictionary = Value::Dictionary;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A device that throws when it is asked for its description, and with two faults for its class as well.
struct Lamp : Object {
  explicit Lamp(int faults = 0) : faultCount(faults) {}
  std::string className() const override { return faultCount < 2 ? "Lamp" : throw std::runtime_error("no name"); }
  std::string description() const override { return faultCount < 1 ? "Lamp\xFF" : throw 1; }
  bool respondsToSelector(std::string_view) const override { return false; }
  Value performSelector(std::string_view, std::span<const Value>) override { return {}; }
  int faultCount;
};

// `innermost` inside `levels` lists, each of which holds the next `copies` times.
Value nested(Value innermost, int levels, std::size_t copies = 1) {
  for (int level = 0; level < levels; ++level) {
    innermost = List(copies, innermost);
  }
  return innermost;
}

TEST(Value, NumbersReadAsEachOtherAndNothingElseReadsAsANumber) {
  EXPECT_EQ(Value(true).realValue(), 1.0);
  EXPECT_EQ(Value(0.25).booleanValue(), true);
  EXPECT_EQ(Value(std::uint64_t{1} << 63).integerValue(), INT64_MAX);
  EXPECT_EQ(Value(1e300).integerValue(), INT64_MAX);
  EXPECT_EQ(Value(kNaN).integerValue(), 0);
  for (const Value& other : {Value("12"), Value(static_cast<const char*>(nullptr)), Value(ObjectPointer())}) {
    EXPECT_FALSE(other.booleanValue() || other.integerValue() || other.realValue()) << other.description();
  }
}

TEST(Value, MayBeAssignedFromItsOwnPartsAndMovedFrom) {
  Value value(List{List{Value("inner")}, 2});
  value = (*value.list())[0];
  EXPECT_EQ(value, Value(List{Value("inner")}));
  const Value taken = std::move(value);
  EXPECT_TRUE(value.isAbsent());
  EXPECT_EQ(taken.find("inner"), nullptr);
}

TEST(Value, EqualsWhatHasItsTypeAndContentAndNothingElse) {
  const auto lamp = std::make_shared<Lamp>();
  const auto other = std::make_shared<Lamp>();
  // Lists of values that all differ; made twice, so that equal containers are not the same ones.
  const auto differentOnes = [&](double nan) -> std::vector<List> {
    return {{{}, true, 1, 1.0, nan, "a", Value::Data{'a'}, Date{1}, Date{nan}, lamp, other, List{}, Dictionary{}},
            {Color{nan, 0, 0}, Color{1, 0, 0}, std::string("a\0b", 3), std::string("a\0c", 3)},
            {List{}, List{1}, List{1, 2}, List{1, 3}},
            {Dictionary{{"a", 1}}, Dictionary{{"a", 2}}, Dictionary{{"b", 1}}, Dictionary{{"a", 1}, {"b", 1}}}};
  };
  for (std::size_t row = 0; row < differentOnes(kNaN).size(); ++row) {
    const List ones = differentOnes(kNaN)[row];
    const List others = differentOnes(-kNaN)[row];
    for (std::size_t i = 0; i < ones.size() * ones.size(); ++i) {
      const Value& a = ones[i / ones.size()];
      const Value& b = others[i % ones.size()];
      EXPECT_EQ(a == b, i / ones.size() == i % ones.size()) << a.description() << " and " << b.description();
    }
  }
}

TEST(Value, DepthAndSharedPartsCostNeitherStackNorEndlessTime) {
  const Value deep = nested(1, 1'000'000);
  EXPECT_TRUE(deep == nested(1, 1'000'000));
  EXPECT_FALSE(deep == nested(2, 1'000'000));
  EXPECT_EQ(deep.description().substr(0, 3), "(((");
  const Value doubled = nested(1, 64, 2);
  EXPECT_TRUE(doubled == nested(1, 64, 2));
  EXPECT_FALSE(doubled == nested(2, 64, 2));
  EXPECT_TRUE(doubled.description().ends_with("…"));
  // Where one side holds a list twice, the other holds two lists of the same parts, by turns.
  Value even(List{1, 1});
  Value odd(List{1, 1});
  for (int level = 0; level < 64; level += 2) {
    even = List{Value(List(2, even)), Value(List(2, even))};
    odd = List(2, List{Value(List(*odd.list())), Value(List(*odd.list()))});
  }
  EXPECT_TRUE(even == odd);
}

TEST(Value, CutDescriptionEndsBetweenCharacters) {
  for (std::string text : {"", "a", "ab"}) {
    while (text.size() <= Value::kMaximumDescriptionLength) {
      text += "€";
    }
    for (const Value& value : {Value(text), Value(List{text}), Value(Dictionary{{text, 1}})}) {
      const std::string shown = value.description();
      EXPECT_TRUE(isValidUTF8(shown) && shown.ends_with("€…") && shown.size() <= Value::kMaximumDescriptionLength);
    }
  }
}

TEST(Value, DescriptionShowsEachType) {
  const std::tuple<const char*, Value, const char*> kRows[] = {
      {"numbers", List{true, INT64_MIN, 1e300}, "(YES, -9223372036854775808, 1e+300)"},
      {"text inside", List{"a\n\"\\\x1B\xFF"}, "(\"a\\n\\\"\\\\\\x1b\xEF\xBF\xBD\")"},
      {"data", Value::Data{0xAA, 0x00, 0x4B, 0x46, 0xFF}, "<aa004b46 ff>"},
      {"dates", List{Date{730902896.9}, Date{-0.5}}, "(2024-02-29T12:34:56Z, 2000-12-31T23:59:59Z)"},  // date -u
      {"date that is no number", Date{kNaN}, "nan s from 2001-01-01T00:00:00Z"},
      {"colour", Color{1, 0.5, 0, 1}, "rgba(1, 0.5, 0, 1)"},
      {"containers", Dictionary{{"", List{}}, {"a = b", {}}, {"c", 1}}, "{\"\" = (), \"a = b\" = (null), c = 1}"},
      {"object", std::make_shared<Lamp>(), "Lamp\xEF\xBF\xBD"},
      {"objects that throw", List{std::make_shared<Lamp>(2), std::make_shared<Lamp>(1)}, "(?\?\?, Lamp)"},
  };
  for (const auto& [name, value, text] : kRows) {
    EXPECT_EQ(value.description(), text) << name;
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
  const std::jthread other(copyOften);
  copyOften();
}

}  // namespace
}  // namespace SharedClasses::platform
