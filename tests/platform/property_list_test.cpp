#include "platform/property_list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace SharedClasses::platform {
namespace {

using List = Value::List;
using Dictionary = Value::Dictionary;

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr double kLargestReal = std::numeric_limits<double>::max();

constexpr std::string_view kDocument = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>latitude</key>
	<real> 40.7142 </real>
	<key>devices</key>
	<array><string>Hall &amp; stairs</string><integer>-3</integer><true/><data>aGk=</data></array>
	<key>K&#xFC;che</key>
	<dict><!-- none yet --></dict>
</dict>
</plist>
)";

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) {
    result += text;
  }
  return result;
}

TEST(PropertyListFromXML, ReadsAWholeDocumentAndLeavesTheErrorAlone) {
  PropertyListError error{"untouched", 7};
  const auto value = propertyListFromXML(kDocument, &error);
  const Value expected(Dictionary{{"latitude", 40.7142},
                                  {"devices", List{"Hall & stairs", -3, true, Value::Data{'h', 'i'}}},
                                  {"Küche", Dictionary{}}});
  ASSERT_TRUE(value);
  EXPECT_EQ(*value, expected) << value->description();
  EXPECT_EQ(error.message, "untouched");
  EXPECT_EQ(error.line, 7U);
}

TEST(PropertyListFromXML, RefusesEveryBeginningOfADocument) {
  const std::size_t lastNeeded = kDocument.rfind('>');
  for (std::size_t length = 0; length <= lastNeeded; ++length) {
    SCOPED_TRACE(length);
    EXPECT_FALSE(propertyListFromXML(kDocument.substr(0, length)));
  }
}

TEST(PropertyListFromXML, ReadsEachElement) {
  const struct {
    const char* name;
    std::string_view document;
    Value value;
  } kRows[] = {
      {"text keeps its blanks", "<string> a\r\n b </string>", " a\n b "},
      {"text in pieces", "<string>a<![CDATA[<b>]]><!-- c -->&lt;</string>", "a<b><"},
      {"no text", "<string/>", ""},
      {"UTF-8 mark", "\xEF\xBB\xBF<string>x</string>", "x"},
      {"US-ASCII", "<?xml version='1.0' encoding='us-ascii'?><true/>", true},
      {"bare document type", "<!DOCTYPE plist><plist><false></false></plist>", false},
      {"hexadecimal", "<integer>-0xFF</integer>", -255},
      {"plus sign and blanks", "<integer>\n\t+12 </integer>", 12},
      {"smallest integer", "<integer>-9223372036854775808</integer>", kSmallest},
      {"integer above the range", "<integer>9223372036854775808</integer>", kLargest},
      {"integer of many digits", "<integer>-99999999999999999999999</integer>", kSmallest},
      {"real of 17 digits", "<real>0.30000000000000004</real>", 0.1 + 0.2},
      {"smallest real", "<real>5e-324</real>", std::numeric_limits<double>::denorm_min()},
      {"real stays real", "<real>1</real>", 1.0},
      {"infinite", "<array><real>-inf</real><real>+infinity</real></array>", List{-HUGE_VAL, HUGE_VAL}},
      {"not a number", "<real>nan</real>", std::numeric_limits<double>::quiet_NaN()},
      {"reals above the range", "<array><real>-1e999</real><real>1e99999999999999999999</real></array>",
       List{-kLargestReal, kLargestReal}},
      {"real below the range", "<real>1e-999</real>", 0.0},
      // Seconds from `date -u +%s`, less the 978307200 of 2001-01-01.
      {"leap day", "<date>2024-02-29T12:34:56Z</date>", Date{730902896}},
      {"date before 2001", "<date> 1970-01-01T00:00:00Z\n</date>", Date{-978307200}},
      {"date far off", "<date>9999-12-31T23:59:59Z</date>", Date{252423993599}},
      // RFC 4648, section 10.
      {"data", "<array><data/><data>Zg==</data><data>Zm8=</data><data>\n\tZm 9v\nYmFy</data></array>",
       List{Value::Data{}, Value::Data{'f'}, Value::Data{'f', 'o'}, Value::Data{'f', 'o', 'o', 'b', 'a', 'r'}}},
      {"data of the last digits", "<data>+/+/</data>", Value::Data{0xFB, 0xFF, 0xBF}},
      {"key twice", "<dict><key>a</key><true/><key/><true/><key>a</key><integer>2</integer></dict>",
       Dictionary{{"", true}, {"a", 2}}},
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
      {"no XML", "bplist00", 1, "(XML)"},
      {"UTF-16 mark", "\xFF\xFE<\0"sv, 1, "UTF-16"},
      {"UTF-16 without mark", "<\0a\0/\0>\0"sv, 1, "NUL"},
      {"NUL in a text", "<string>\n\0</string>"sv, 2, "NUL"},
      {"bad UTF-8", "\n<string>\xC3</string>", 2, "UTF-8"},
      {"NUL reference", "<string>&#0;</string>", 1, "inside <string>"},
      {"latin-1", "<?xml version='1.0' encoding='ISO-8859-1'?><true/>", 1, "ISO-8859-1"},
      {"other document type", "<!DOCTYPE html><true/>", 1, "html"},
      {"entity", "<!DOCTYPE plist [\n<!ENTITY a 'b'>]><string>&a;</string>", 1, "document type"},
      {"parameter entity", "<!DOCTYPE plist [<!ENTITY % a SYSTEM 'file:///etc/passwd'> %a;]><true/>", 1,
       "document type"},
      {"undeclared entity", "<string>&a;</string>", 1, "undefined entity inside <string>"},
      {"entity of the outside", "<!DOCTYPE plist SYSTEM 'p.dtd'>\n<string>&a;</string>", 2, "&a;"},
      {"unknown element", "<plist>\n<set/></plist>", 2, "<set>"},
      {"attribute", "<string id='1'/>", 1, "<string> has an attribute id"},
      {"two values", "<plist><true/>\n<false/></plist>", 2, "second value, <false>"},
      {"two roots", "<true/>\n<true/>", 2, "junk"},
      {"text behind", "<true/>\nx", 2, "(XML)"},
      {"empty plist", "<plist></plist>", 1, "<plist> has no value"},
      {"plist inside plist", "<plist><plist><true/></plist></plist>", 1, "<plist> inside"},
      {"element in a text", "<string><true/></string>", 1, "<true> inside <string>"},
      {"element in a key", "<dict><key><dict/></key></dict>", 1, "<dict> inside <key>"},
      {"text in an array", "<array>\nx</array>", 2, "text \"x\""},
      {"key in an array", "<array><key>a</key></array>", 1, "<key> outside <dict>"},
      {"value without key", "<dict>\n<array/></dict>", 2, "<array> without a <key>"},
      {"key without value", "<dict><key>a</key></dict>", 1, "<key> \"a\" without"},
      {"two keys", "<dict><key>a</key><key>b</key><true/></dict>", 1, "<key> \"a\" without"},
      {"wrong end", "<dict><key>a</key></array>", 1, "mismatched tag inside <dict>"},
      {"no integer", "<integer/>", 1, "<integer> holds \"\""},
      {"half an integer", "<integer>12 3</integer>", 1, "\"12 3\""},
      {"signs only", "<integer>+-1</integer>", 1, "<integer>"},
      {"hexadecimal without digits", "<integer>0x</integer>", 1, "<integer>"},
      {"no real", "<real>1,5</real>", 1, "<real> holds \"1,5\""},
      {"two signs", "<real>--1</real>", 1, "<real>"},
      {"text in true", "<true>yes</true>", 1, "<true> holds \"yes\""},
      {"day that is none", "<date>2023-02-29T00:00:00Z</date>", 1, "<date>"},
      {"hour that is none", "<date>2023-02-28T24:00:00Z</date>", 1, "<date>"},
      {"second that is none", "<date>2016-12-31T23:59:60Z</date>", 1, "<date>"},
      {"date without zone", "<date>2023-02-28T00:00:00</date>", 1, "<date>"},
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

TEST(PropertyListFromXML, RefusesWhatIsTooDeepTooLargeOrAnEntityBomb) {
  const std::size_t depth = kMaximumPropertyListDepth;
  EXPECT_TRUE(propertyListFromXML(repeated("<array>", depth) + repeated("</array>", depth)));
  EXPECT_FALSE(propertyListFromXML(repeated("<array>", depth + 1) + repeated("</array>", depth + 1)));
  EXPECT_FALSE(propertyListFromXML(repeated("<dict><key>a</key>", 200'000)));
  EXPECT_FALSE(propertyListFromXML(repeated("<plist>", 200'000)));

  std::string large = "<true/>";
  large.resize(kMaximumPropertyListSize, ' ');
  EXPECT_TRUE(propertyListFromXML(large));
  PropertyListError error;
  EXPECT_FALSE(propertyListFromXML(large + ' ', &error));
  EXPECT_NE(error.message.find("bytes"), std::string::npos);

  EXPECT_FALSE(
      propertyListFromXML("<!DOCTYPE plist [<!ENTITY a 'ha'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>"
                          "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;'>]><string>&c;</string>"));
}

TEST(PropertyListFromXML, LongNamesAreCutInMessages) {
  PropertyListError error;
  EXPECT_FALSE(propertyListFromXML('<' + std::string(100'000, 'x') + "/>", &error));
  EXPECT_LT(error.message.size(), 200U);
}

}  // namespace
}  // namespace SharedClasses::platform
