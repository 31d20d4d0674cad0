#include "platform/property_list.h"

#include <gtest/gtest.h>

#include <limits>

namespace SharedClasses::platform {

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
  const std::tuple<const char*, std::string_view, Value> kRows[] = {
      {"text in pieces", "\xEF\xBB\xBF<string> a\r\n<![CDATA[<b>]]><!-- c -->&lt; </string>", " a\n<b>< "},
      {"US-ASCII", "<?xml version='1.0' encoding='us-ascii'?><!DOCTYPE plist><plist><false></false></plist>", false},
      {"plus sign, hexadecimal", "<integer>\n\t+0xFf </integer>", 255},
      {"integer above the range", "<integer>9223372036854775808</integer>", INT64_MAX},
      {"integer of many digits", "<integer>-99999999999999999999999</integer>", INT64_MIN},
      {"real above the range", "<real>-1e99999999999999999999</real>", -Reals::max()},
      {"real below the range", "<real>1e-999</real>", 0.0},
      // Seconds from `date -u +%s`, less the 978307200 of 2001-01-01.
      {"leap day", "<date> 2024-02-29T12:34:56Z\n</date>", Date{730902896}},
      // RFC 4648, section 10.
      {"data of one", "<data>Zg==</data>", Value::Data{'f'}},
      {"data of five", "<data>\n\tZm 9v\nYmE=</data>", Value::Data{'f', 'o', 'o', 'b', 'a'}},
      {"key twice", "<dict><key>a</key><true/><key>a</key><integer>2</integer></dict>", Dictionary{{"a", 2}}},
  };
  for (const auto& [name, document, value] : kRows) {
    SCOPED_TRACE(name);
    PropertyListError error;
    EXPECT_EQ(propertyListFromXML(document, &error), value) << error.message;
  }
}

TEST(PropertyListFromXML, RefusesWithTheElementAndTheLine) {
  using namespace std::string_view_literals;
  // The line, and a part of the message.
  const std::tuple<const char*, std::string_view, std::size_t, const char*> kRows[] = {
      {"nothing", "", 1, "ends too early"},
      {"UTF-16", "\xFF\xFE<\0"sv, 1, "UTF-16"},
      {"NUL in a text", "<string>\n\0</string>"sv, 2, "NUL"},
      {"latin-1", "<?xml version='1.0' encoding='ISO-8859-1'?><true/>", 1, "ISO-8859-1"},
      {"other document type", "<!DOCTYPE html><true/>", 1, "html"},
      {"entity", "<!DOCTYPE plist [\n<!ENTITY % a SYSTEM 'file:///etc/passwd'> %a;]><true/>", 1, "document type"},
      {"entity of the outside", "<!DOCTYPE plist SYSTEM 'p.dtd'>\n<string>&a;</string>", 2, "&a;"},
      {"unknown element", "<plist>\n<set/></plist>", 2, "<set>"},
      {"attribute", "<string id='1'/>", 1, "<string> has an attribute id"},
      {"other attribute", "<plist version='1.0' id='1'><true/></plist>", 1, "<plist> has other attributes"},
      {"entity in it", "<!DOCTYPE plist SYSTEM 'p'><plist version='1&a;'><true/></plist>", 1, "an entity"},
      {"two values", "<plist><true/>\n<false/></plist>", 2, "second value, <false>"},
      {"text at the end", "<true/>\n x", 2, "junk"},
      {"empty plist", "<plist></plist>", 1, "<plist> has no value"},
      {"plist inside plist", "<plist><plist><true/></plist></plist>", 1, "<plist> inside"},
      {"element in a key", "<dict><key><true/></key></dict>", 1, "<true> inside <key>"},
      {"text in an array", "<array>\nx</array>", 2, "text \"x\""},
      {"key in an array", "<array><key>a</key></array>", 1, "<key> outside <dict>"},
      {"value without key", "<dict>\n<array/></dict>", 2, "<array> without a <key>"},
      {"key without value", "<dict><key>a</key></dict>", 1, "<key> \"a\" without"},
      {"two keys", "<dict><key>a</key><key>b</key><true/></dict>", 1, "<key> \"a\" without"},
      {"half an integer", "<integer>12 3</integer>", 1, "\"12 3\""},
      {"two signs", "<real>--1</real>", 1, "<real>"},
      {"text in true", "<true>yes</true>", 1, "<true> holds \"yes\""},
      {"day that is none", "<date>2023-02-29T00:00:00Z</date>", 1, "<date>"},
      {"second that is none", "<date>2016-12-31T23:59:60Z</date>", 1, "<date>"},
      {"date with signs", "<date>2023-+2-28T00:00:00Z</date>", 1, "<date>"},
      {"base64 cut", "<data>Zm8</data>", 1, "<data>"},
      {"base64 of one digit", "<data>Z===</data>", 1, "<data>"},
      {"base64 goes on", "<data>Zg==Zg==</data>", 1, "<data>"},
      {"base64 for addresses", "<data>-_-_</data>", 1, "<data>"},
  };
  for (const auto& [name, document, line, message] : kRows) {
    SCOPED_TRACE(name);
    PropertyListError error{"dirty", 99};
    EXPECT_FALSE(propertyListFromXML(document, &error));
    EXPECT_NE(error.message.find(message), std::string::npos) << error.message;
    EXPECT_EQ(error.line, line);
  }
}

TEST(PropertyListFromXML, RefusesWhatIsTooDeepOrTooLargeInFewWords) {
  std::string deep;
  for (std::size_t level = 0; level <= kMaximumPropertyListDepth; ++level) {
    deep = "<array>" + deep + "</array>";
  }
  EXPECT_FALSE(propertyListFromXML(deep));  // One level less and one byte less are read back below.
  EXPECT_FALSE(propertyListFromXML("<true/>" + std::string(kMaximumPropertyListSize - 6, ' ')));
  PropertyListError error;
  EXPECT_FALSE(propertyListFromXML('<' + std::string(100'000, 'x') + "/>", &error));
  EXPECT_LT(error.message.size(), 200U);
}

TEST(PropertyListFromXML, FindsBadBytesWhereverTheyStand) {
  for (std::size_t position = 8; position < 100; ++position) {
    SCOPED_TRACE(position);
    const auto messageFor = [position](std::string_view bytes) {
      PropertyListError error;
      const std::string document = "<string>" + std::string(100, 'a') + "</string>";
      static_cast<void>(propertyListFromXML(std::string(document).replace(position, bytes.size(), bytes), &error));
      return error.message;
    };
    EXPECT_EQ(messageFor({"\0", 1}), "the document has a NUL byte");
    EXPECT_EQ(messageFor("\x80"), "the document is not well-formed UTF-8");
    EXPECT_EQ(messageFor("é"), "");
  }
}

TEST(PropertyListAsXML, IsAFileThatAPersonReads) {
  const Value value(Dictionary{{"b", List{-3, List{}, Value::Data(60, 0)}}, {"a<&>", Dictionary{{"gone", Value()}}}});
  EXPECT_EQ(propertyListAsXML(value), R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>a&lt;&amp;&gt;</key>
	<dict>
	</dict>
	<key>b</key>
	<array>
		<integer>-3</integer>
		<array/>
		<data>
		AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA
		AAAA
		</data>
	</array>
</dict>
</plist>
)");
}

TEST(PropertyListAsXML, ReadsBackAsTheSameValue) {
  // Last how the document says it.
  const std::tuple<const char*, Value, std::string_view> kRows[] = {
      {"markup and line ends", " <a>&b]]>\r\n\r\t\x7F ", "<string> &lt;a&gt;&amp;b]]&gt;&#13;\n&#13;\t\x7F </string>"},
      {"characters", "é\u2028\U0001F4A1\uFFFD", "<string>é\u2028\U0001F4A1\uFFFD</string>"},
      {"empty key", Dictionary{{"", ""}, {"\r", " "}}, "<key></key>\n\t<string></string>\n\t<key>&#13;</key>"},
      {"boolean", List{true, false, 1}, "\t<true/>\n\t<false/>\n\t<integer>1</integer>\n"},
      {"smallest integer", INT64_MIN, "<integer>-9223372036854775808</integer>"},
      {"float", 132.0F, "<real>132</real>"},
      {"seventeen digits", 0.1 + 0.2, "<real>0.30000000000000004</real>"},
      {"negative zero", -0.0, "<real>-0</real>"},
      {"not a number", -Reals::quiet_NaN(), "<real>nan</real>"},
      {"infinite", -Reals::infinity(), "<real>-inf</real>"},
      // Seconds from `date -u +%s`, less the 978307200 of 2001-01-01.
      {"first date", Date{-63145526400}, "<date>0000-01-01T00:00:00Z</date>"},
      {"last date", Date{252423993599}, "<date>9999-12-31T23:59:59Z</date>"},
      // RFC 4648, section 10.
      {"data of four", Value::Data{'f', 'o', 'o', 'b'}, "<data>Zm9vYg==</data>"},
      {"data of five", Value::Data{'f', 'o', 'o', 'b', 'a'}, "<data>Zm9vYmE=</data>"},
      {"data of the last digits", Value::Data{0xFB, 0xFF, 0xBF}, "<data>+/+/</data>"},
      {"data of many lines", Value::Data(1000, 0xA5), "<data>\npaWl"},
  };
  for (const auto& [name, value, element] : kRows) {
    SCOPED_TRACE(name);
    const auto document = propertyListAsXML(value);
    ASSERT_TRUE(document);
    EXPECT_NE(document->find(element), std::string::npos) << *document;
    EXPECT_EQ(propertyListFromXML(*document), value) << *document;
  }
  EXPECT_EQ(propertyListFromXML(propertyListAsXML(Date{-0.25}).value()), Value(Date{-1}));
}

TEST(PropertyListAsXML, RefusesWhatNoDocumentHoldsAndNamesThePlace) {
  Value levels(List{});
  Value shared = levels;
  for (std::size_t level = 1; level < kMaximumPropertyListDepth; ++level) {
    levels = List(1, levels);
    shared = level < 100 ? List(2, shared) : shared;
  }
  const std::size_t frame = propertyListAsXML("").value().size();
  const std::string largest(kMaximumPropertyListSize - frame, 'x');
  EXPECT_EQ(propertyListFromXML(propertyListAsXML(levels).value()), levels);
  EXPECT_EQ(propertyListFromXML(propertyListAsXML(largest).value()), Value(largest));
  // Last a part of the message.
  const std::tuple<const char*, Value, const char*> kRows[] = {
      {"nothing", Value(), "value is absent"},
      {"absent in a list", Dictionary{{"a\nb", List{1, Value()}}}, R"(value["a b"][1] is absent)"},
      {"color", List{Color{}}, "value[0] is a color"},
      {"year 10000", Date{252423993600}, "value is a date outside"},
      {"year -1", Date{-63145526400.5}, "value is a date outside"},
      {"date that is no number", Date{Reals::quiet_NaN()}, "value is a date outside"},
      {"control character", List{0, "\x1B[m"}, "value[1] holds the character 001b"},
      {"noncharacter", "\uFFFE", "value holds the character fffe"},
      {"surrogate", "\xED\xA0\x80", "value is not well-formed UTF-8"},
      {"NUL in a key", Dictionary{{std::string("a\0", 2), List{1}}}, R"(value["a?"] has a key that holds)"},
      {"too deep", List(1, levels), "is more than 512 levels deep"},
      {"too large", largest + 'x', "value makes the document longer than 16777216"},
      {"two to the hundredth parts", shared, "makes the document longer"},
  };
  for (const auto& [name, value, message] : kRows) {
    SCOPED_TRACE(name);
    std::string error = "dirty";
    EXPECT_FALSE(propertyListAsXML(value, &error));
    EXPECT_NE(error.find(message), std::string::npos) << error;
    EXPECT_LT(error.size(), 400U);
  }
}

}  // namespace SharedClasses::platform
