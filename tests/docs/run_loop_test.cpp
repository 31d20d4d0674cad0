// docs/run_loop.md shows the programs of examples/run_loop, which are compiled and run.
#include <gtest/gtest.h>

#include <fstream>

namespace SharedClasses {
namespace {

std::string textOfFile(const std::string& path) {
  std::ifstream file(SOURCE_FOLDER "/" + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(RunLoopPage, ShowsTheProgramsAsTheyAre) {
  const std::string page = textOfFile("docs/run_loop.md");
  for (const char* const name : {"poll_loop.cpp", "glib_loop.cpp"}) {
    const std::string program = textOfFile(std::string("examples/run_loop/") + name);
    EXPECT_FALSE(program.empty()) << name;
    EXPECT_NE(page.find("```cpp\n" + program + "```\n"), std::string::npos) << name;
  }
}

}  // namespace
}  // namespace SharedClasses
