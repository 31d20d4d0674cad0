// The tool `marlow` as another process: arguments and input in, outputs and exit code out.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {

// What a shell runs it by: with English texts, half a minute at most, with neither settings nor texts of whoever runs
// the tests. `home` is the user's home folder and holds the settings.
inline std::string toolCommand(const std::vector<std::string>& arguments, const std::string& home) {
  std::string command = "timeout 30 env -i PATH=\"$PATH\" LANGUAGE=en";
  std::vector<std::string> words{"HOME=" + home, "XDG_CONFIG_HOME=" + home + "/.config",
                                 "XDG_CONFIG_DIRS=" + home + "/etc", "XDG_DATA_HOME=" + home + "/.local/share",
                                 PROGRAM_FOLDER "/marlow"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  for (const std::string& word : words) {
    command += " '" + std::regex_replace(word, std::regex("'"), "'\\''") + "'";
  }
  return command;
}

struct ToolResult {
  std::string output, complaints;
  int exitCode;  // 128 and more: ended by a signal
};

// Runs the tool to its end on `input`; with an empty `home` in a fresh one.
inline ToolResult runTool(const std::vector<std::string>& arguments, std::string_view input = {},
                          const std::string& home = {}) {
  const TemporaryFolder fresh, streams;
  const auto contentsOf = [](const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  const std::string given = streams.write("input", input), output = given + ".output", complaints = given + ".errors";
  const std::string command = "cat " + given + " | " + toolCommand(arguments, home.empty() ? fresh.path() : home);
  const int status = std::system((command + " >" + output + " 2>" + complaints).c_str());
  return {contentsOf(output), contentsOf(complaints), WEXITSTATUS(status)};
}

}  // namespace SharedClasses::tests
