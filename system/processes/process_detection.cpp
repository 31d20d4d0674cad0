#include "system/processes/process_detection.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>
#include <vector>

#include "platform/bundle.h"
#include "platform/clock.h"
#include "platform/exceptions.h"
#include "platform/log.h"
#include "platform/program_lock.h"
#include "platform/run_loop.h"
#include "platform/saturating.h"
#include "platform/text.h"
#include "platform/users.h"
#include "shared/action_codes.h"
#include "shared/constants.h"
#include "system/processes/administrator.h"
#include "system/processes/simple_task.h"

namespace SharedClasses::Utilities {

namespace {

using platform::Value;
using Text = std::optional<std::string>;

constexpr std::string_view kClassicName = "TruBlueEnvironment";
constexpr std::size_t kListedNameLength = 15;  // the system's listings cut names here
constexpr double kAnswerLimit = 2.0;           // seconds for one tool
constexpr double kFilterLimit = 1.1;           // seconds for one that counts names
constexpr double kPatience = 10.0;             // seconds for a chain of tools in all
constexpr double kQuitPatience = 5.0;          // seconds for an agent to quit
constexpr std::chrono::nanoseconds kLookInterval = std::chrono::milliseconds(50);  // between two looks at a process

// Tools answer the same whatever the host's language and terminal: letters of either case are matched by that of the
// host, and names are cut at its number of columns.
std::vector<platform::EnvironmentChange> toolEnvironment() {
  return {{"LC_ALL", "C.UTF-8"}, {"COLUMNS", std::nullopt}};
}

struct Step {
  const char* path;
  std::vector<std::string> arguments;
  double limit;  // seconds
};

// Runs tools one after another, each with the output of the one before it for input. The last output; absent when that
// step did not end within its limit. A step that runs over its limit is waited for, but all together no longer than
// kPatience.
Text outputOfChain(const std::vector<Step>& steps) {
  const platform::Clock& clock = platform::Clock::system();
  const std::chrono::nanoseconds end = clock.steadyTime() + platform::spanOfSeconds(kPatience);
  Text output;
  for (const Step& step : steps) {
    const std::chrono::duration<double> left = end - clock.steadyTime();
    if (left.count() <= 0) {
      return std::nullopt;
    }
    Text input = std::exchange(output, std::nullopt);
    SimpleTask task({.launchPath = step.path,
                     .arguments = step.arguments,
                     .inputText = std::move(input),
                     .outputText = &output,
                     .maxSecondsToWait = std::min(step.limit, left.count()),
                     .environmentChanges = toolEnvironment()});
    task.waitForEnd(end - clock.steadyTime());
  }
  return output;
}

// Why `work` did not come to its end, as when a tool could not be started; empty where it did.
std::string reasonOf(const std::function<void()>& work) {
  try {
    work();
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

// The output of one tool; absent also where it cannot be started.
Text outputOfTool(const char* path, std::vector<std::string> arguments) {
  Text output;
  static_cast<void>(reasonOf([&] { output = outputOfChain({{path, std::move(arguments), kAnswerLimit}}); }));
  return output;
}

std::vector<std::string_view> partsOf(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find(separator, start), text.size());
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

// Listings cut long names ("systemd+") or give the number.
std::string wholeUserName(std::string_view listed, std::int32_t userID) {
  const bool isNumber = std::ranges::all_of(listed, [](char c) { return c >= '0' && c <= '9'; });
  if (isNumber || listed.ends_with('+')) {
    return platform::userNameOfID(static_cast<std::uint32_t>(userID)).value_or(std::string(listed));
  }
  return std::string(listed);
}

// The first agent that belongs to another user than marlowUser.
std::optional<Value::Dictionary> foreignAgent() {
  const Value::List agents = runningAgentsInfo();
  if (agents.empty()) {
    return std::nullopt;
  }
  const std::int64_t own = marlowUserID();
  for (const Value& agent : agents) {
    if (agent.find("uid")->integerValue() != own) {
      return *agent.dictionary();
    }
  }
  return std::nullopt;
}

void serveRunLoopFor(std::chrono::nanoseconds span) {
  const platform::Clock& clock = platform::Clock::system();
  const std::chrono::nanoseconds end = clock.steadyTime() + span;
  while (clock.steadyTime() < end) {
    platform::RunLoop::current().runOnce(end - clock.steadyTime());
  }
}

// Programs that state no signature, by the names of their processes.
struct ForeignProgram {
  platform::FourCharCode signature;
  const char* processName;
};
constexpr ForeignProgram kForeignPrograms[] = {
    {kAIMSignature, "^aim"}, {kiChatSignature, "^iChat"}, {kAdiumSignature, "^Adium"}, {kYahooSignature, "^Yahoo"}};

bool hasSignature(platform::FourCharCode signature) {
  return appSignature() == stringFromFourCharCode(signature);
}

}  // namespace

std::string appSignature() {
  const Value signature = platform::Bundle::main().infoValue("CFBundleSignature");
  return signature.text() == nullptr ? std::string() : *signature.text();
}

bool appIsAgent() {
  return hasSignature(kAgentSignature);
}

bool appIsGUI() {
  return hasSignature(kGUIAppSignature);
}

std::string marlowUser() {
  const std::vector<std::string> words = platform::programArguments();
  const auto option = std::ranges::find(words, "-user");
  if (option != words.end() && option + 1 != words.end() && !(option + 1)->empty()) {
    return *(option + 1);
  }
  return platform::currentUserName();
}

std::int32_t marlowUserID() {
  const Text output = outputOfTool("/usr/bin/id", {"-u", marlowUser()});
  return platform::lenientInteger(output.value_or(""));
}

void stateSignature(platform::FourCharCode signature) {
  platform::holdProgramLock(stringFromFourCharCode(signature));
}

bool isProcessRunning(platform::FourCharCode signature) {
  const auto foreign = std::ranges::find(kForeignPrograms, signature, &ForeignProgram::signature);
  if (foreign != std::end(kForeignPrograms)) {
    return isProcessNameRunning(foreign->processName);
  }
  return platform::isProgramLockHeld(stringFromFourCharCode(signature));
}

bool isClassicRunning() {
  Text names;
  static_cast<void>(reasonOf([&] {
    SimpleTask task({.launchPath = "/bin/ps",
                     .arguments = std::vector<std::string>{"acx", "-o", "command"},
                     .outputText = &names,
                     .maxSecondsToWait = kAnswerLimit,
                     .environmentChanges = toolEnvironment()});
    const platform::Clock& clock = platform::Clock::system();
    const std::chrono::nanoseconds end = clock.steadyTime() + std::chrono::seconds(1);
    while (task.isRunning() && clock.steadyTime() < end) {
      platform::RunLoop::current().runOnce(kLookInterval);
    }
  }));
  return names && names->find(kClassicName.substr(0, kListedNameLength)) != std::string::npos;
}

bool isProcessNameRunning(std::optional<std::string_view> name) {
  if (!name || name->empty()) {
    return false;
  }
  std::string pattern(*name);
  if (pattern.starts_with('-')) {
    pattern.replace(0, 1, "[-]");  // the same pattern, but no option
  }
  Text count;
  const std::string fault = reasonOf([&] {
    count = outputOfChain({{"/bin/ps", {"acxo", "command"}, kAnswerLimit},
                           {"/usr/bin/grep", {"-i", pattern}, kFilterLimit},
                           {"/usr/bin/wc", {"-l"}, kFilterLimit},
                           {"/usr/bin/awk", {"{ print $1; }"}, kFilterLimit}});
  });
  if (!fault.empty()) {
    platform::log("+ [ Utilities isProcessNameRunning ] got an exception: " + fault);
    return false;
  }
  return platform::lenientInteger(count.value_or("")) >= 1;
}

bool isIndigoRunning() {
  return isProcessNameRunning("indigo");
}

bool isXTensionRunning() {
  // Kept: there must be a character before the X, and lines of the listing begin with the name: a process that is named
  // exactly "XTension" is not found.
  return isProcessNameRunning("[^e]XTension");
}

Value::List runningAgentsInfo() {
  Value::List agents;
  Text listing;
  // Kept: an agent that has ended is listed until its parent has waited for it, and counts as running until then:
  // quitForeignAgent says that it stays.
  const std::string fault = reasonOf([&] {
    listing = outputOfChain({{"/bin/ps", {"acxo", "pid,uid,user,command"}, kAnswerLimit},
                             {"/usr/bin/grep", {"MarlowAgent"}, kAnswerLimit},
                             {"/usr/bin/awk", {"{ print $1, $2, $3, $4; }"}, kAnswerLimit}});
  });
  if (!fault.empty()) {
    platform::log("+ [ Utilities runningAgentsInfo ] got an exception: " + fault);
  }
  const std::string lines = listing.value_or("");
  for (const std::string_view line : partsOf(lines, '\n')) {
    const std::vector<std::string_view> parts = partsOf(line, ' ');
    if (parts.size() >= 4) {
      const std::int32_t user = platform::lenientInteger(parts[1]);
      agents.emplace_back(Value::Dictionary{
          {"pid", platform::lenientInteger(parts[0])}, {"uid", user}, {"username", wholeUserName(parts[2], user)}});
    }
  }
  return agents;
}

std::optional<Value::Dictionary> processInfoOfForeignAgent() {
  std::optional<Value::Dictionary> agent = foreignAgent();
  if (agent) {
    platform::log("The copy of MarlowAgent that is already running is owned by a different user, " +
                  agent->at("uid").description());
  }
  return agent;
}

std::int32_t quitForeignAgent(platform::PrivilegedExecution* authorization) {
  const std::optional<Value::Dictionary> agent = processInfoOfForeignAgent();
  const std::int64_t process = agent ? agent->at("pid").integerValue().value_or(0) : 0;
  if (process <= 0) {
    return kForeignAgentQuit;
  }
  Administrator administrator;
  platform::PrivilegedExecution& execution = authorization != nullptr ? *authorization : administrator;
  std::int32_t status = platform::PrivilegedExecution::kNotPossible;
  const auto thrown = platform::nameOfThrown([&] {
    status = execution.execute("/bin/kill", {"-TERM", std::to_string(process)});
  });
  if (thrown) {
    platform::log("The authorization to make the foreign agent quit threw " + *thrown + ".");
  }
  if (status != platform::PrivilegedExecution::kDone) {
    return status;
  }
  const platform::Clock& clock = platform::Clock::system();
  const std::chrono::nanoseconds end = clock.steadyTime() + platform::spanOfSeconds(kQuitPatience);
  while (true) {
    const bool isOver = clock.steadyTime() >= end;
    if (!foreignAgent()) {
      return kForeignAgentQuit;
    }
    if (isOver) {
      platform::log("The foreign agent failed to quit after 5 seconds.");
      return kForeignAgentStays;
    }
    serveRunLoopFor(kLookInterval);
  }
}

std::string userNameRunningForeignAgent() {
  static_cast<void>(outputOfTool("/usr/bin/id", {"-u", ""}));
  return {};
}

}  // namespace SharedClasses::Utilities
