// checksum, dump, ip, path and descriptor.
#include <gtest/gtest.h>

#include "tests/support/tool.h"

namespace SharedClasses::tests {
namespace {

using namespace std::string_literals;

TEST(BytesCommands, PrintWhatTheLibraryMakesOfBytesAndNumbers) {
  const TemporaryFolder folder;
  const std::string file = folder.write("bytes", "\xFF\x02"s);
  const std::string list = "mdsclist\0\0\0\2utxt\0\0\0\4Lampbool\0\0\0\1\1"s;
  const struct {
    const char* name;
    std::vector<std::string> arguments;
    std::string input;
    int exitCode;
    std::string output;
    std::string complaint = {};  // a part of it; empty for none at all
  } kRows[] = {
      {"sums", {"checksum", "-", file}, "", 0, "0x00 0x0000  standard input\n0x01 0xfeff  " + file + '\n'},
      {"the input twice",
       {"checksum", "-", file, "-"},
       "",
       2,
       "0x00 0x0000  standard input\n0x01 0xfeff  " + file + '\n',
       "standard input: has been read already"},
      {"sums as JSON",
       {"checksum", "--json"},
       "\x80",
       0,
       "{\"bytes\":1,\"checkSum\":128,\"checkSum16Bit\":65408,\"file\":\"-\"}\n"},
      {"sum of what is missing",
       {"checksum", "/nonexistent", "--json"},
       "",
       2,
       "{\"error\":\"the file cannot be read: No such file or directory\",\"file\":\"/nonexistent\"}\n",
       "No such file"},
      {"sum of a folder and more", {"checksum", "/", "-"}, "", 2, "0x00 0x0000  standard input\n", "Is a directory"},
      {"dump",
       {"dump"},
       "0123456789\n",
       0,
       "\t0000: 0x30 0x31 0x32 0x33 0x34 0x35 0x36 0x37 0x38 0x39 \n\t000a: 0x0a \n"},
      {"dump as JSON",
       {"dump", "--json"},
       "0123456789\n",
       0,
       "{\"bytes\":[48,49,50,51,52,53,54,55,56,57],\"file\":\"-\",\"offset\":0}\n"
       "{\"bytes\":[10],\"file\":\"-\",\"offset\":10}\n"},
      {"dump of nothing as JSON", {"dump", "--json"}, "", 0, "{\"bytes\":[],\"file\":\"-\",\"offset\":0}\n"},
      {"addresses",
       {"ip", "0xC0a80001", "-1", "4294967295"},
       "",
       0,
       "0xC0a80001: 192.168.0.1\n-1: 255.255.255.255\n4294967295: 255.255.255.255\n"},
      {"no addresses", {"ip"}, "0x-1\n4294967296\n1.2.3.4\n0x\n", 1, "", "\"4294967296\": no address"},
      {"path", {"path", "Application Support", "System"}, "", 0, "/usr/local/share/Application Support\n"},
      {"path of no folder", {"path", "logs", "User"}, "", 1, "", "\"logs\" is no folder"},
      {"path in no domain", {"path", "Logs", "user"}, "", 1, "", "neither User nor System"},
      {"path without a domain", {"path", "Logs"}, "", 2, "", "takes the name of a folder and a domain"},
      {"descriptor", {"descriptor"}, list, 0, "descriptor: [ \"Lamp\", true ]\nvalue:      (\"Lamp\", YES)\n"},
      {"descriptor as JSON",
       {"descriptor", "--json"},
       list,
       0,
       "{\"descriptor\":\"[ \\\"Lamp\\\", true ]\",\"file\":\"-\",\"value\":[\"Lamp\",true]}\n"},
      {"descriptor cut short", {"descriptor"}, list.substr(0, 22), 1, "", "byte 22: "},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const ToolResult result = runTool(row.arguments, row.input);
    EXPECT_EQ(result.exitCode, row.exitCode);
    EXPECT_EQ(result.output, row.output);
    EXPECT_EQ(result.complaints.empty(), row.complaint.empty()) << result.complaints;
    EXPECT_NE(result.complaints.find(row.complaint), std::string::npos) << result.complaints;
  }
}

}  // namespace
}  // namespace SharedClasses::tests
