#include "tools/marlow/command.h"
#include "tools/marlow/output.h"
#include "tools/marlow/strings_check.h"

namespace SharedClasses::marlow {

namespace {

ExitCode run(const Arguments& arguments) {
  const std::vector<std::string>& operands = arguments.operands();
  if (operands.size() != 2 || operands[0] != "check") {
    complain("strings: write marlow strings check FOLDER; see marlow strings --help");
    return ExitCode::CannotRun;
  }
  const StringsReport report = checkStrings(operands[1]);
  if (report.localizations == 0) {
    complain(
        operands[1] +
        ": no folder of texts here; give the path of a folder such as fr.lproj, or of one that holds such folders");
    return ExitCode::CannotRun;
  }
  for (const StringsFault& fault : report.faults) {
    if (arguments.wantsJSON()) {
      printJSON(platform::Value::Dictionary{{"file", fault.file}, {"line", fault.line}, {"message", fault.message}});
    } else {
      printLine(fault.file + ":" + std::to_string(fault.line) + ": " + fault.message);
    }
  }
  if (!arguments.wantsJSON()) {
    printLine(std::to_string(report.texts) + " texts in " + std::to_string(report.localizations) +
              (report.localizations == 1 ? " language: " : " languages: ") + std::to_string(report.faults.size()) +
              (report.faults.size() == 1 ? " fault" : " faults"));
  }
  return report.faults.empty() ? ExitCode::AllWell : ExitCode::BadInput;
}

}  // namespace

const Command kStringsCommand = {
    .name = "strings",
    .summary = "check the texts of a translation",
    .usage = "check [--json] FOLDER",
    .help =
        "Checks a folder of texts such as fr.lproj, or every such folder in FOLDER, and prints each fault with its "
        "file\n"
        "and line: a line that cannot be read, a key that is missing, misspelt or given twice, slots (%@) that differ\n"
        "from the English text.\n"
        "\n"
        "  marlow strings check resources\n"
        "  marlow strings check resources/fr.lproj\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
