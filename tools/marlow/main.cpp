#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <vector>

#include "platform/bundle.h"
#include "platform/library_version.h"
#include "platform/log.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

// In the order in which `--help` lists them.
constexpr const Command* kCommands[] = {
    &kListenCommand,  &kLogCommand,     &kX10Command,     &kInsteonCommand,    &kOneWireCommand,
    &kPadCommand,     &kActionCommand,  &kClockCommand,   &kDaysCommand,       &kSizeCommand,
    &kMessageCommand, &kVersionCommand, &kUpdatesCommand, &kSunCommand,        &kZoneCommand,
    &kPrefsCommand,   &kAgentsCommand,  &kRunningCommand, &kRunCommand,        &kChecksumCommand,
    &kDumpCommand,    &kIPCommand,      &kPathCommand,    &kDescriptorCommand, &kStringsCommand};

// A person at the command line reads standard error, not the system's log.
class ComplainingLog : public platform::LogSink {
 public:
  void write(std::string_view message) override { complain(message); }
};

void printHelp(std::ostream& stream) {
  stream << "marlow: the home-automation library at the command line\n\nmarlow COMMAND [ARGUMENT…]\n\n";
  for (const Command* command : kCommands) {
    std::string name(command->name);
    name.resize(12, ' ');
    stream << "  " << name << command->summary << '\n';
  }
  stream << "\nmarlow COMMAND --help or marlow help COMMAND says more. Every command takes --json, which prints\n"
            "one JSON object a line.\n"
            "Exit codes: 0 all well; 1 some input was bad; 2 the command was used wrongly or could not run.\n"
            "Texts are in the language of LANGUAGE, LC_ALL, LC_MESSAGES or LANG; MARLOW_RESOURCES names another\n"
            "folder of resources.\n";
}

void printHelp(const Command& command) {
  std::cout << "marlow " << command.name << ": " << command.summary << "\n\nmarlow " << command.name << ' '
            << command.usage << "\n\n"
            << command.help;
}

// Null, with a complaint, for none.
const Command* commandNamed(std::string_view name) {
  const auto found = std::ranges::find(kCommands, name, [](const Command* command) { return command->name; });
  if (found == std::end(kCommands)) {
    complain("there is no command " + quoted(name) + "; marlow --help lists them");
    return nullptr;
  }
  return *found;
}

// `words` is "help" and at most the name of a command.
ExitCode help(std::span<const std::string_view> words) {
  if (words.size() > 2) {
    complain("help: one command at a time; leave out " + quoted(words[2]));
    return ExitCode::CannotRun;
  }
  if (words.size() < 2) {
    printHelp(std::cout);
    return ExitCode::AllWell;
  }
  const Command* const command = commandNamed(words[1]);
  if (command == nullptr) {
    return ExitCode::CannotRun;
  }
  printHelp(*command);
  return ExitCode::AllWell;
}

ExitCode run(std::span<const std::string_view> words) {
  platform::setLogSink(std::make_shared<ComplainingLog>());
  if (words.empty()) {
    printHelp(std::cerr);
    return ExitCode::CannotRun;
  }
  if (words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
    return help(words);
  }
  if (words[0] == "--version") {
    printLine("marlow " + std::string(platform::libraryVersion()));
    return ExitCode::AllWell;
  }
  const Command* const named = commandNamed(words[0]);
  if (named == nullptr) {
    return ExitCode::CannotRun;
  }
  const Command& command = *named;
  std::string error;
  const std::optional<Arguments> arguments =
      Arguments::parse(words.subspan(1), command.options, &error, command.negativeNumbers);
  if (!arguments) {
    complain(std::string(command.name) + ": " + error + "; see marlow " + std::string(command.name) + " --help");
    return ExitCode::CannotRun;
  }
  if (arguments->has("--help")) {
    printHelp(command);
    return ExitCode::AllWell;
  }
  if (const platform::Bundle& bundle = platform::Bundle::main();
      command.wordsThings && bundle.preferredLocalizations().empty()) {
    complain(std::string(command.name) + ": " + quoted(bundle.resourceFolder()) +
             " holds no texts; let MARLOW_RESOURCES name a folder that holds English.lproj");
    return ExitCode::CannotRun;
  }
  return command.run(*arguments);
}

}  // namespace

}  // namespace SharedClasses::marlow

int main(int count, char** words) {
  using SharedClasses::marlow::ExitCode;
  ExitCode code = ExitCode::CannotRun;
  try {
    std::ios::sync_with_stdio(false);
    const std::vector<std::string_view> arguments(words + std::min(count, 1), words + count);
    code = SharedClasses::marlow::run(arguments);
    if (!SharedClasses::marlow::outputSucceeded()) {
      code = ExitCode::CannotRun;
    }
  } catch (const std::exception& exception) {  // out of memory and the like
    std::cerr << "marlow: " << exception.what() << '\n';
  }
  return static_cast<int>(code);
}
