#include "core/buffer.h"

#include <gtest/gtest.h>

#include "core/text.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses {
namespace {

using namespace std::string_literals;

std::string bytesOf(const Buffer& buffer) {
  EXPECT_EQ(buffer.getDataPtr() == nullptr, buffer.length() == 0);
  return {buffer.getDataPtr(), buffer.getDataPtr() + buffer.length()};
}

TEST(CoreBuffer, EveryChangeLeavesTheStatedBytesAlsoWithoutMemory) {
  const Buffer digits("0123456789");
  const tests::Change<Buffer> kRows[] = {
      {"trim", digits, [](Buffer& b) { b.trim(2, 3); }, "23456"},
      {"trim to nothing", digits, [](Buffer& b) { b.trim(5, 5); }, ""},
      {"trim, the sum wraps", digits, [](Buffer& b) { b.trim(9, INT64_MAX); }, ""},
      {"trim, negative", digits, [](Buffer& b) { b.trim(INT64_MIN, 1); }, "012345678"},
      {"itself twice", digits, [](Buffer& b) { b += b; }, "01234567890123456789"},
      {"append, negative", digits, [](Buffer& b) { b.append(b.getDataPtr(), -2); }, "0123456789"},
      {"append past 32 bits", digits, [](Buffer& b) { b.append(b.getDataPtr(), 0xFFFFFFF6); }, "0123456789"},
      {"append, the sum wraps", digits, [](Buffer& b) { b.append(b.getDataPtr(), INT64_MAX); }, "0123456789"},
      {"itself", digits, [](Buffer& b) { b = std::as_const(b); }, "0123456789"},
      {"a part of it", digits, [](Buffer& b) { b.setData(b.getDataPtr() + 2, 3); }, "234", ""},
      {"null for zero bytes", digits, [](Buffer& b) { b.setData(nullptr, 3); }, "\0\0\0"s, ""},
      {"no bytes", digits, [](Buffer& b) { b.alloc(0); }, ""},
      {"negative", digits, [](Buffer& b) { b.setData(b.getDataPtr(), INT64_MIN); }, ""},
      {"clear", digits, [](Buffer& b) { b.clear(); }, "\0\0\0\0\0\0\0\0\0\0"s},
      {"moved from", digits, [](Buffer& b) { Buffer(std::move(b)).clear(); }, ""},
      {"up to the end", digits, [](Buffer& b) { b.getDataAt(b.getDataPtr(), 7, 3); }, "7893456789"},
      {"not past the end", digits, [](Buffer& b) { b.getDataAt(b.getDataPtr(), 8, 3); }, "0123456789"},
      {"not where the sum wraps", digits, [](Buffer& b) { b.getDataAt(b.getDataPtr(), 8, INT64_MAX); }, "0123456789"},
      {"not before the first", digits, [](Buffer& b) { b.getDataAt(b.getDataPtr(), -1, 2); }, "0123456789"},
      {"overlapping", digits, [](Buffer& b) { b.getDataAt(b.getDataPtr() + 1, 0, 9); }, "0012345678"},
  };
  for (const auto& row : kRows) {
    tests::expectChange(row, bytesOf);
  }
}

TEST(CoreBuffer, AWrongIndexReadsAsFFAndWritesToTheScratchByteWithMessages) {
  Buffer buffer(10);
  const Buffer same(buffer);
  EXPECT_TRUE(same[9] == 0 && same[10] == 0xFF && same[-1] == 0xFF && same[INT64_MIN] == 0xFF);
  testing::internal::CaptureStdout();
  EXPECT_EQ(&buffer[10], &deadBeef);
  EXPECT_EQ(Buffer()[-1], 0xBF);
  EXPECT_EQ(&buffer[9], buffer.getDataPtr() + 9);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Buffer ASSERT: Index 10 > ( mDataLen 10 - 1 )\nBuffer ASSERT: [] failed\n"
            " Buffer ASSERT: DATA = nilBuffer ASSERT: Index -1 > ( mDataLen 0 - 1 )\nBuffer ASSERT: [] failed\n");
}

TEST(CoreBuffer, TheDumpHasTenBytesALine) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(Buffer("0123456789\xAB").log("pfx", UINT64_MAX) + Buffer("0").log(nullptr, 1) + Buffer().log("x", 9), 6);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "pfx\t0x30 0x31 0x32 0x33 0x34 0x35 0x36 0x37 0x38 0x39 \npfx\t0xab \n\n\t0x30 \n\n\n\n");
}

TEST(CoreBuffer, OnlyWholeRegularFilesLoadAndNothingHangs) {
  const tests::TemporaryFolder folder;
  const std::string huge = folder.write("huge", "");
  std::filesystem::resize_file(huge, 0x100000000);  // takes no room on the disk
  const auto load = [](const std::string& path) {
    Buffer buffer(3);
    const int status = buffer.loadFromFile(path.c_str());
    return std::to_string(status) + ':' + bytesOf(buffer);
  };
  EXPECT_EQ(load(folder.write("file", {"a\0b", 3})), "0:a\0b"s);
  EXPECT_EQ(load(folder.write("empty", "")), "0:");
  EXPECT_EQ(load("") + load(folder.path() + "/missing") + load(huge) + load(folder.path()), "-1:-1:-1:-1:");
  EXPECT_EQ(load(folder.makePipe("pipe")) + load("/dev/zero"), "0:0:");
}

}  // namespace
}  // namespace SharedClasses
