// The tool `marlow` as a child process: arguments and input in, output and exit code out.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {

class Tool {
 public:
  // Starts `marlow` with `arguments`, English texts and open pipes to its standard streams. `home` is the user's home folder
  // and holds the settings; empty for a fresh one.
  explicit Tool(std::vector<std::string> arguments, const std::string& home = {});
  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;
  ~Tool();

  void write(std::string_view input);  // a few lines: more than a pipe holds has to go through finish()

  // The next line of standard output, without its line break; waits for it at most ten seconds, then gives "(no line)".
  std::string readLine();

  // Writes `input`, closes the input, reads both outputs to their end and waits.
  void finish(std::string_view input = {});

  [[nodiscard]] const std::string& output() const { return mOutput; }  // what readLine() has not taken
  [[nodiscard]] const std::string& complaints() const { return mComplaints; }
  [[nodiscard]] int exitCode() const { return mExitCode; }  // 128 and more: ended by a signal

 private:
  void closeInput();

  TemporaryFolder mFreshHome;
  pid_t mChild = -1;
  int mInput = -1;
  int mOutputEnd = -1;
  int mComplaintsEnd = -1;
  std::string mOutput;
  std::string mComplaints;
  int mExitCode = -1;
};

// Runs the tool to its end on `input`.
struct ToolResult {
  std::string output;
  std::string complaints;
  int exitCode;
};
ToolResult runTool(std::vector<std::string> arguments, std::string_view input = {}, const std::string& home = {});

}  // namespace SharedClasses::tests
