#include "platform/property_list.h"

#include <gtest/gtest.h>

#include <limits>

namespace SharedClasses::platform {
namespace {

using List = Value::List;
using Dictionary = Value::Dictionary;
using Reals = std::numeric_limits<double>;

constexpr std::string_view kDocument = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict><key>devices</key>
	<array><string>Hall &amp; stairs</string><integer>-3</integer><real> 40.7142 </real></array>
	<key>K&#xFC;che</key><dict><!-- none yet --></dict></dict></plist>)";

TEST(PropertyListFromXML, ReadsAWholeDocumentAndRefusesEveryBeginningOfIt) {
  PropertyListError error{"untouched", 7};
  const Value expected(Dictionary{{"devices", List{"Hall & stairs", -3, 40.7142}}, {"Küche", Dictionary{}}});
  EXPECT_EQ(propertyListFromXML(kDocument, &error), expected);
  EXPECT_EQ(error.message, "untouched");
  for (std::size_t length = 0; length < kDocument.size(); ++length) {
    EXPECT_FALSE(propertyListFromXML(kDocument.substr(0, length))) << length;
  }
}

TEST(PropertyListFromXML, ReadsEachElement) {
  const struct {
    const char* name;
    std::string_view document;
    Value value;
  } kRows[] = {
      {"text in pieces", "\xEF\xBB\xBF<string> a\r\n<![CDATA[<b>]]><!-- c -->&lt; </string>", " a\n<b>< "},
      {"US-ASCII", "<?xml version='1.0' encoding='us-ascii'?><!DOCTYPE plist><plist><false></false></plist>", false},
      {"plus sign, hexadecimal", "<integer>\n\t+0xFf </integer>", 255},
      {"integer above the range", "<integer>9223372036854775808</integer>", INT64_MAX},
      {"integer of many digits", "<integer>-99999999999999999999999</integer>", INT64_MIN},
      {"smallest real", "<real>5e-324</real>", Reals::denorm_min()},
      {"infinite", "<real>-inf</real>", -Reals::infinity()},
      {"not a number", "<real>nan</real>", Reals::quiet_NaN()},
      {"real above the range", "<real>-1e99999999999999999999</real>", -Reals::max()},
      {"real below the range", "<real>1e-999</real>", 0.0},
      // Seconds from `date -u +%s`, less the 978307200 of 2001-01-01.
      {"leap day", "<date>2024-02-29T12:34:56Z</date>", Date{730902896}},
      {"date before 2001", "<date> 1970-01-01T00:00:00Z\n</date>", Date{-978307200}},
      // RFC 4648, section 10.
      {"data of one", "<data>Zg==</data>", Value::Data{'f'}},
      {"data of five", "<data>\n\tZm 9v\nYmE=</data>", Value::Data{'f', 'o', 'o', 'b', 'a'}},
      {"data of the last digits", "<data>+/+/</data>", Value::Data{0xFB, 0xFF, 0xBF}},
      {"key twice", "<dict><key>a</key><true/><key>a</key><integer>2</integer></dict>", Dictionary{{"a", 2}}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    PropertyListError error;
    const auto value = propertyListFromXML(row.document, &error);
    ASSERT_TRUE(value) << error.message;
    EXPECT_EQ(*value, row.value) << value->description();
  }
}

TEST(PropertyListFromXML, RefusesWithTheElementAndTheLine) {
  using namespace std::string_view_literals;
  const struct {
    const char* name;
    std::string_view document;
    std::size_t line;
    const char* message;  // a part of it
  } kRows[] = {
      {"nothing", "", 1, "ends too early"},
      {"UTF-16", "\xFF\xFE<\0"sv, 1, "UTF-16"},
      {"NUL in a text", "<string>\n\0</string>"sv, 2, "NUL"},
      {"bad UTF-8", "\n<string>\xC3</string>", 2, "UTF-8"},
      {"latin-1", "<?xml version='1.0' encoding='ISO-8859-1'?><true/>", 1, "ISO-8859-1"},
      {"other document type", "<!DOCTYPE html><true/>", 1, "html"},
      {"entity", "<!DOCTYPE plist [\n<!ENTITY % a SYSTEM 'file:///etc/passwd'> %a;]><true/>", 1, "document type"},
      {"entity of the outside", "<!DOCTYPE plist SYSTEM 'p.dtd'>\n<string>&a;</string>", 2, "&a;"},
      {"unknown element", "<plist>\n<set/></plist>", 2, "<set>"},
      {"attribute", "<string id='1'/>", 1, "<string> has an attribute id"},
      {"two values", "<plist><true/>\n<false/></plist>", 2, "second value, <false>"},
      {"empty plist", "<plist></plist>", 1, "<plist> has no value"},
      {"plist inside plist", "<plist><plist><true/></plist></plist>", 1, "<plist> inside"},
      {"element in a key", "<dict><key><true/></key></dict>", 1, "<true> inside <key>"},
      {"text in an array", "<array>\nx</array>", 2, "text \"x\""},
      {"key in an array", "<array><key>a</key></array>", 1, "<key> outside <dict>"},
      {"value without key", "<dict>\n<array/></dict>", 2, "<array> without a <key>"},
      {"key without value", "<dict><key>a</key></dict>", 1, "<key> \"a\" without"},
      {"two keys", "<dict><key>a</key><key>b</key><true/></dict>", 1, "<key> \"a\" without"},
      {"half an integer", "<integer>12 3</integer>", 1, "\"12 3\""},
      {"signs only", "<integer>+-1</integer>", 1, "<integer>"},
      {"two signs", "<real>--1</real>", 1, "<real>"},
      {"text in true", "<true>yes</true>", 1, "<true> holds \"yes\""},
      {"day that is none", "<date>2023-02-29T00:00:00Z</date>", 1, "<date>"},
      {"hour that is none", "<date>2023-02-28T24:00:00Z</date>", 1, "<date>"},
      {"second that is none", "<date>2016-12-31T23:59:60Z</date>", 1, "<date>"},
      {"date with signs", "<date>2023-+2-28T00:00:00Z</date>", 1, "<date>"},
      {"base64 cut", "<data>Zm8</data>", 1, "<data>"},
      {"base64 of one digit", "<data>Z===</data>", 1, "<data>"},
      {"base64 goes on", "<data>Zg==Zg==</data>", 1, "<data>"},
      {"base64 for addresses", "<data>-_-_</data>", 1, "<data>"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    PropertyListError error{"dirty", 99};
    EXPECT_FALSE(propertyListFromXML(row.document, &error));
    EXPECT_NE(error.message.find(row.message), std::string::npos) << error.message;
    EXPECT_EQ(error.line, row.line);
  }
}

TEST(PropertyListFromXML, RefusesWhatIsTooDeepOrTooLargeInFewWords) {
  std::string deep;
  for (std::size_t level = 0; level < kMaximumPropertyListDepth; ++level) {
    deep = "<array>" + deep + "</array>";
  }
  EXPECT_TRUE(propertyListFromXML(deep));
  EXPECT_FALSE(propertyListFromXML("<array>" + deep + "</array>"));
  std::string large = "<true/>";
  large.resize(kMaximumPropertyListSize, ' ');
  EXPECT_TRUE(propertyListFromXML(large));
  EXPECT_FALSE(propertyListFromXML(large + ' '));
  PropertyListError error;
  EXPECT_FALSE(propertyListFromXML('<' + std::string(100'000, 'x') + "/>", &error));
  EXPECT_LT(error.message.size(), 200U);
}

}  // namespace
}  // namespace SharedClasses::platform
