#include "system/miscellany/desktop.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "platform/child_process.h"
#include "platform/clock.h"
#include "platform/log.h"
#include "platform/run_loop.h"
#include "platform/text.h"
#include "platform/text_parts.h"
#include "platform/voices.h"
#include "platform/workspace.h"

namespace SharedClasses::Utilities {

namespace {

using platform::PipeEnd;
using platform::Readiness;
using platform::RunLoop;
using std::chrono::nanoseconds;

constexpr nanoseconds kLongestListing = std::chrono::seconds(4);
constexpr nanoseconds kUnwatchedStep = std::chrono::milliseconds(5);  // between two looks at what cannot be watched
constexpr std::size_t kLongestOutput = std::size_t{64} << 20;         // bytes

std::optional<std::string> textOrAbsent(std::string text) {
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

// What a program prints until it ends, or until time runs out; the run loop is served meanwhile.
std::string outputOf(const std::string& program, const std::vector<std::string>& arguments) {
  std::string output;
  try {
    platform::ChildProcess child(program, arguments);
    child.closeInput();
    std::unique_ptr<platform::Watch> printed;
    const auto read = [&] {
      if (platform::readFromPipe(child.output(), &output) == PipeEnd::Ended) {
        printed.reset();
      }
    };
    printed = RunLoop::current().watch(child.output(), Readiness::Readable, read);
    // Dropped once ready, as it would be ready for ever where the end is not ours to take yet.
    std::unique_ptr<platform::Watch> ended;
    ended = RunLoop::current().watch(child.endDescriptor(), Readiness::Readable, [&ended] { ended.reset(); });
    const platform::Clock& clock = platform::Clock::system();
    const nanoseconds end = clock.steadyTime() + kLongestListing;
    while (child.isRunning() && output.size() < kLongestOutput) {
      const nanoseconds left = end - clock.steadyTime();
      if (left <= nanoseconds(0)) {
        break;
      }
      RunLoop::current().runOnce(printed != nullptr && ended != nullptr ? left : std::min(left, kUnwatchedStep));
      read();
    }
    read();
  } catch (const platform::LaunchError& error) {
    platform::log(error.what());
  }
  return output;
}

// What "spd-say -L" prints; empty where the folders of PATH, which is where each system has it, hold no such program,
// or it cannot be run. What came until then counts where time runs out. Its own end is waited for, not that of its
// output: a server that it starts keeps that open. The environment stays as it is: the list is not translated, and the
// server lives on with it.
std::string listOfVoices() {
  platform::DesktopFolders folders;
  folders.programFolders = platform::DesktopFolders::current().programFolders;
  const std::string program = platform::pathOfProgram("spd-say", folders);
  return program.empty() ? std::string() : outputOf(program, {"-L"});
}

// Whether `list` has a row of that name under its heading, "NAME LANGUAGE VARIANT". Its columns are aligned to the
// right, at least as wide as in the heading, and parted by nothing but that: a name holds blanks, and a long variant
// touches the language. So a name is what stands in front of the width of the other two; what a variant takes beyond
// its own is made up for by the blanks in front of the language.
bool holdsVoice(std::string_view list, std::string_view name) {
  constexpr std::string_view kNameHeading = "NAME ";
  constexpr std::string_view kLastHeading = "VARIANT";
  std::optional<std::size_t> widthOfOthers;
  while (list.find('\n') != std::string_view::npos) {  // A last line without it was cut.
    const std::string_view line = platform::takePart(list, '\n');
    if (widthOfOthers) {
      const std::size_t width = line.size() - std::min(line.size(), *widthOfOthers);
      if (platform::trimmed(line.substr(0, width)) == name) {
        return true;
      }
    } else if (platform::trimmed(line).starts_with(kNameHeading) && line.ends_with(kLastHeading)) {
      widthOfOthers = line.size() - line.find(kNameHeading) - (kNameHeading.size() - 1);
    }
  }
  return false;
}

}  // namespace

std::optional<std::string> findAppWithShortName(std::string_view name) {
  return textOrAbsent(platform::pathOfProgram(name));
}

bool openURL(std::string_view url) {
  return !platform::openAddress(url);
}

std::optional<std::string> voiceIDWithName(std::string_view name) {
  const std::optional<std::vector<platform::Voice>> voices = platform::currentVoices();
  if (!voices) {
    const bool isListed = !name.empty() && holdsVoice(listOfVoices(), name);
    return isListed ? std::optional<std::string>(name) : std::nullopt;
  }
  for (const platform::Voice& voice : *voices) {
    const auto attribute = voice.attributes.find("VoiceName");
    const std::string* const voiceName = attribute == voice.attributes.end() ? nullptr : attribute->second.text();
    if (voiceName != nullptr && *voiceName == name) {
      return voice.identifier;
    }
  }
  return std::nullopt;
}

}  // namespace SharedClasses::Utilities
