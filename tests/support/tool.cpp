#include "tests/support/tool.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace SharedClasses::tests {

namespace {

constexpr int kPatience = 10'000;  // milliseconds

// The end to read from and the one to write to.
std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    std::abort();
  }
  return ends;
}

// The null-terminated form that the system takes; points into `words`.
std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

// Appends what is there to `text`; false at the end of the stream or when nothing comes in time.
bool readSome(int end, std::string& text) {
  pollfd waiting{end, POLLIN, 0};
  std::array<char, 65536> buffer{};
  if (::poll(&waiting, 1, kPatience) <= 0) {
    return false;
  }
  const ssize_t count = ::read(end, buffer.data(), buffer.size());
  if (count <= 0) {
    return false;
  }
  text.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

}  // namespace

Tool::Tool(std::vector<std::string> arguments, const std::string& home) {
  ::signal(SIGPIPE, SIG_IGN);  // A tool that ends early must not end the tests.
  const auto [inputRead, inputWrite] = makePipe();
  const auto [outputRead, outputWrite] = makePipe();
  const auto [complaintsRead, complaintsWrite] = makePipe();
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, inputRead, STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, outputWrite, STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, complaintsWrite, STDERR_FILENO);
  arguments.insert(arguments.begin(), PROGRAM_FOLDER "/marlow");
  // Nothing of whoever runs the tests: neither the settings nor the texts.
  const std::string& folder = home.empty() ? mFreshHome.path() : home;
  std::vector<std::string> variables{std::string("PATH=") + std::getenv("PATH"),
                                     "LANGUAGE=en",
                                     "HOME=" + folder,
                                     "XDG_CONFIG_HOME=" + folder + "/.config",
                                     "XDG_CONFIG_DIRS=" + folder + "/etc",
                                     "XDG_DATA_HOME=" + folder + "/.local/share"};
  if (::posix_spawn(&mChild, arguments[0].c_str(), &actions, nullptr, pointersTo(arguments).data(),
                    pointersTo(variables).data()) != 0) {
    mChild = -1;
  }
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(inputRead);
  ::close(outputWrite);
  ::close(complaintsWrite);
  mInput = inputWrite;
  mOutputEnd = outputRead;
  mComplaintsEnd = complaintsRead;
}

Tool::~Tool() {
  closeInput();
  ::close(mOutputEnd);
  ::close(mComplaintsEnd);
  if (mChild > 0 && mExitCode < 0) {
    ::kill(mChild, SIGKILL);
    ::waitpid(mChild, nullptr, 0);
  }
}

void Tool::write(std::string_view input) {
  [[maybe_unused]] const ssize_t count = ::write(mInput, input.data(), input.size());  // readLine() misses what is lost
}

void Tool::closeInput() {
  if (mInput >= 0) {
    ::close(mInput);
    mInput = -1;
  }
}

std::string Tool::readLine() {
  std::size_t end = 0;
  while ((end = mOutput.find('\n')) == std::string::npos) {
    if (!readSome(mOutputEnd, mOutput)) {
      return "(no line)";
    }
  }
  const std::string line = mOutput.substr(0, end);
  mOutput.erase(0, end + 1);
  return line;
}

void Tool::finish(std::string_view input) {
  ::fcntl(mInput, F_SETFL, O_NONBLOCK);
  // All three at once, so that no pipe fills up while the tool waits for another.
  for (bool outputOpen = true, complaintsOpen = true; outputOpen || complaintsOpen;) {
    if (input.empty()) {
      closeInput();
    }
    std::array<pollfd, 3> ends{{{outputOpen ? mOutputEnd : -1, POLLIN, 0},
                                {complaintsOpen ? mComplaintsEnd : -1, POLLIN, 0},
                                {mInput, POLLOUT, 0}}};
    if (::poll(ends.data(), ends.size(), kPatience) <= 0) {
      return;
    }
    if (ends[0].revents != 0) {
      outputOpen = readSome(mOutputEnd, mOutput);
    }
    if (ends[1].revents != 0) {
      complaintsOpen = readSome(mComplaintsEnd, mComplaints);
    }
    if (ends[2].revents != 0) {
      const ssize_t count = ::write(mInput, input.data(), input.size());
      input.remove_prefix(count < 0 ? input.size() : static_cast<std::size_t>(count));
    }
  }
  int status = 0;
  ::waitpid(mChild, &status, 0);
  mExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

ToolResult runTool(std::vector<std::string> arguments, std::string_view input, const std::string& home) {
  Tool tool(std::move(arguments), home);
  tool.finish(input);
  return {tool.output(), tool.complaints(), tool.exitCode()};
}

}  // namespace SharedClasses::tests
