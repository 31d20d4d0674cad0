// Which programs run, whose they are, and how a copy of the agent that belongs to somebody else is made to quit.
// Questions are answered by the system's command-line tools and take some hundredths of a second; each look at the
// system ends within 10 seconds whatever the tools do, and the question for a foreign agent takes two. Everything works
// on the calling thread; nothing throws.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/four_char_code.h"
#include "platform/privileged_execution.h"
#include "platform/value.h"

namespace SharedClasses::Utilities {

// "CFBundleSignature" of the main bundle: "QZ2d" for the agent, "QZV2" for the GUI. Empty where it has none.
[[nodiscard]] std::string appSignature();
[[nodiscard]] bool appIsAgent();
[[nodiscard]] bool appIsGUI();

// The user whom the agent serves: what stands behind "-user" among the program's arguments, else the current user.
[[nodiscard]] std::string marlowUser();
// That user's number; 0 where the system does not know the user.
[[nodiscard]] std::int32_t marlowUserID();

// States that this process is the program with this signature, until it ends, to everybody who asks isProcessRunning.
void stateSignature(platform::FourCharCode signature);

// Whether a program that stated this signature runs, hung or stopped, or, for the messenger programs, whether a process
// of that name does. Where the system does not tell whether a signature was stated, it counts as running.
[[nodiscard]] bool isProcessRunning(platform::FourCharCode signature);

[[nodiscard]] bool isClassicRunning();

// Whether the name of any process matches `name`, a pattern of grep, whatever the case. False for an empty or absent
// name.
[[nodiscard]] bool isProcessNameRunning(std::optional<std::string_view> name);

// The same for "indigo": any process with that in its name counts, of whatever user.
[[nodiscard]] bool isIndigoRunning();

// The same for "XTension" behind another character than "e".
// Kept: there has to be such a character, so that a process named exactly "XTension" is not found.
[[nodiscard]] bool isXTensionRunning();

// One dictionary for each running agent: "pid" and "uid" (numbers), "username" (a text).
[[nodiscard]] platform::Value::List runningAgentsInfo();

// The first running agent that belongs to another user than marlowUser; absent when there is none. Logs whose it is.
[[nodiscard]] std::optional<platform::Value::Dictionary> processInfoOfForeignAgent();

inline constexpr std::int32_t kForeignAgentQuit = 0;
inline constexpr std::int32_t kForeignAgentStays = -34;

// Makes the agent of another user quit and waits up to 5 seconds for it, while the thread's run loop is served:
// kForeignAgentQuit, also when there was none; kForeignAgentStays, with a line in the log; else what `authorization`
// answered, kNotPossible and a line in the log where it threw. Null stands for the library's own way: a plain signal,
// and pkexec where that is not allowed.
[[nodiscard]] std::int32_t quitForeignAgent(platform::PrivilegedExecution* authorization);

// Kept: a placeholder that asks the system and gives the empty text.
[[nodiscard]] std::string userNameRunningForeignAgent();

}  // namespace SharedClasses::Utilities
