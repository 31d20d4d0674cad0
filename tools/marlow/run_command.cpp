#include <charconv>
#include <iostream>

#include "system/processes/simple_task.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

constexpr OptionSpecification kOptions[] = {{"--limit", true}, {"--input", true}};

std::optional<double> limitOf(const Arguments& arguments) {
  const std::string text = arguments.value("--limit").value_or("10");
  double seconds = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, seconds);
  // Written so that what is not a number fails too.
  if (error != std::errc() || rest != end || !(seconds >= 0)) {
    complain("run: --limit " + quoted(text) + " is not a number of seconds");
    return std::nullopt;
  }
  return seconds;
}

ExitCode run(const Arguments& arguments) {
  const std::vector<std::string>& words = arguments.operands();
  const std::optional<double> limit = limitOf(arguments);
  if (words.empty() || !limit) {
    complain("run: write marlow run -- /full/path [ARGUMENT…]; see marlow run --help");
    return ExitCode::CannotRun;
  }
  std::optional<std::string> output;
  std::optional<std::string> error;
  std::optional<std::int32_t> status;  // absent when the time was over first
  try {
    SimpleTask task({.launchPath = words.front(),
                     .arguments = std::vector<std::string>(words.begin() + 1, words.end()),
                     .inputText = arguments.value("--input"),
                     .outputText = &output,
                     .errorText = &error,
                     .maxSecondsToWait = *limit});
    // A program that ends just now has still run over its limit.
    if (output || error != "Task timed out.") {
      status = task.terminationStatus();
    }
  } catch (const platform::LaunchError& failure) {
    complain(std::string("run: ") + failure.what());
    return ExitCode::CannotRun;
  }
  if (arguments.wantsJSON()) {
    printJSON(Value::Dictionary{{"output", output ? Value(*output) : Value()},
                                {"error", error ? Value(*error) : Value()},
                                {"status", status ? Value(*status) : Value()},
                                {"timedOut", !status}});
  } else {
    std::cout << output.value_or("");
    std::cerr << error.value_or("") << (status ? "" : "\n");
    if (status && (!output || !error)) {
      complain("run: what the program printed is not UTF-8");
    }
    if (status != 0) {
      complain(status ? "run: the program ended with status " + std::to_string(*status)
                      : "run: the program still runs and was left running");
    }
  }
  return status == 0 ? ExitCode::AllWell : ExitCode::BadInput;
}

}  // namespace

const Command kRunCommand = {
    .name = "run",
    .summary = "run a program as the library does, with a time limit",
    .usage = "[--limit SECONDS] [--input TEXT] [--json] -- /PATH [ARGUMENT…]",
    .help =
        "Runs a program, prints what it printed, and tells how it ended: the exit code is 1 when its status is not 0 "
        "or\n"
        "it did not end in time. A program that runs over its limit is left running.\n"
        "  --limit SECONDS  10 unless given\n"
        "  --input TEXT     what the program reads; without it, its input is at its end at once\n"
        "\n"
        "  marlow run --limit 2 -- /bin/ps acx\n",
    .options = kOptions,
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
