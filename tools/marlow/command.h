// What a command of the tool is: a name, what `--help` says of it, and the function that runs it.
#pragma once

#include <string_view>

#include "tools/marlow/arguments.h"

namespace SharedClasses::marlow {

enum class ExitCode : int {
  AllWell = 0,
  BadInput = 1,   // some input was bad; standard error said which
  CannotRun = 2,  // used wrongly, or a file could not be read
};

struct Command {
  std::string_view name;
  std::string_view summary;                      // one line for the list of commands
  std::string_view usage;                        // what follows the name
  std::string_view help;                         // the rest of `--help`: arguments, input, examples
  std::span<const OptionSpecification> options;  // beside --json and --help, which every command has
  bool wordsThings;                              // useless without the texts of the main bundle
  bool negativeNumbers = false;                  // operands may be such as "-94" without "--" in front
  ExitCode (*run)(const Arguments& arguments);
};

// The commands, each in a source of its own name.
extern const Command kActionCommand;
extern const Command kAgentsCommand;
extern const Command kChecksumCommand;
extern const Command kClockCommand;
extern const Command kDaysCommand;
extern const Command kDescriptorCommand;
extern const Command kDumpCommand;
extern const Command kIPCommand;
extern const Command kInsteonCommand;
extern const Command kListenCommand;
extern const Command kLogCommand;
extern const Command kMessageCommand;
extern const Command kOneWireCommand;
extern const Command kPadCommand;
extern const Command kPathCommand;
extern const Command kPrefsCommand;
extern const Command kRunCommand;
extern const Command kRunningCommand;
extern const Command kSizeCommand;
extern const Command kStringsCommand;
extern const Command kSunCommand;
extern const Command kUpdatesCommand;
extern const Command kVersionCommand;
extern const Command kX10Command;
extern const Command kZoneCommand;

}  // namespace SharedClasses::marlow
