#include "platform/text.h"
#include "system/processes/process_detection.h"
#include "tools/marlow/action_input.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

constexpr OptionSpecification kOptions[] = {{"--signature", false}};

constexpr std::size_t kSignatureLength = 4;

// Answers for one program. False when it does not run, and, with a complaint, for what cannot be a signature.
bool describe(std::string_view input, bool bySignature, bool asJSON) {
  if (bySignature && platform::codePointCount(input) != kSignatureLength) {
    complain(quoted(input) + ": a signature has four characters, such as QZ2d");
    return false;
  }
  const bool runs = bySignature ? Utilities::isProcessRunning(Utilities::fourCharCodeFromString(input))
                                : Utilities::isProcessNameRunning(input);
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"running", runs}});
  } else {
    printLine(std::string(input) + (runs ? ": runs" : ": does not run"));
  }
  return runs;
}

ExitCode run(const Arguments& arguments) {
  return forEachInput("running", arguments, [&](std::string_view input) {
    return describe(input, arguments.has("--signature"), arguments.wantsJSON());
  });
}

}  // namespace

const Command kRunningCommand = {
    .name = "running",
    .summary = "tell whether programs run",
    .usage = "[--signature] [--json] [NAME…]",
    .help =
        "Prints for each name whether a process of that name runs; the exit code is 1 when any does not.\n"
        "A name is a pattern of grep and matches in either case, anywhere in the name of a process.\n"
        "  --signature  names are the signatures of programs that load the library: QZ2d the agent, QZV2 the GUI\n"
        "\n"
        "  marlow running MarlowAgent\n"
        "  marlow running --signature QZ2d\n",
    .options = kOptions,
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
