#include <string>
#include <string_view>

#include "system/miscellany/folders.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

bool isKnown(std::string_view name) {
  return name == "Home" || name == "Library" || name == "Logs" || name == "Application Support" || name == "Documents";
}

ExitCode run(const Arguments& arguments) {
  if (arguments.operands().size() != 2) {
    complain("path: takes the name of a folder and a domain; see marlow path --help");
    return ExitCode::CannotRun;
  }
  const std::string& name = arguments.operands()[0];
  const std::string& domain = arguments.operands()[1];
  if (!isKnown(name) || (domain != "User" && domain != "System")) {
    complain("path: " + (isKnown(name) ? quoted(domain) + " is neither User nor System"
                                       : quoted(name) + " is no folder; see marlow path --help"));
    return ExitCode::BadInput;
  }
  const std::string path = Utilities::pathToDirectoryInDomain(name, domain);
  if (path.empty()) {
    complain(domain == "System" ? "path: XDG_DATA_DIRS names no folder" : "path: the user has no home folder");
    return ExitCode::CannotRun;
  }
  if (arguments.wantsJSON()) {
    printJSON(Value::Dictionary{{"name", name}, {"domain", domain}, {"path", path}});
  } else {
    printLine(path);
  }
  return ExitCode::AllWell;
}

}  // namespace

const Command kPathCommand = {
    .name = "path",
    .summary = "tell where a standard folder lies",
    .usage = "[--json] NAME DOMAIN",
    .help =
        "Prints the path of a standard folder, whether or not it is there. NAME is Home, Library, Logs, \"Application\n"
        "Support\" or Documents; DOMAIN is User, for the user who runs this tool, or System.\n"
        "Documents is the home folder itself, and /home in System: the programs use no folder for documents.\n"
        "\n"
        "  marlow path Logs User\n"
        "  marlow path 'Application Support' System\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
