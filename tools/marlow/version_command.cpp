#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "platform/terminal.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"
#include "updates/version_numbers.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

struct Version {
  std::string input;
  VersionStruct numbers;

  explicit Version(std::string_view text) : input(text) {
    static_cast<void>(VersionNumbers::stringToVersion(text, &numbers));
  }

  // "1.2.b3"
  [[nodiscard]] std::string text() const {
    std::string result;
    static_cast<void>(VersionNumbers::versionToString(numbers, &result));
    return result;
  }

  // As people write it: "1.2b3".
  [[nodiscard]] std::string shortText() const {
    std::string result = text();
    if (numbers.stage != 0) {
      result.erase(result.rfind('.'), 1);
    }
    return result;
  }
};

std::string_view stageName(char stage) {
  return stage == 'b' ? "beta" : stage == 'a' ? "alpha" : stage == 'd' ? "development" : "release";
}

// "1.2.b3 or 1.2b3 (major 1, minor 2, bug fix 0, beta 3)"
std::string factsText(const Version& version) {
  const VersionStruct& numbers = version.numbers;
  std::string result = version.text();
  if (numbers.stage != 0) {
    result += " or " + version.shortText();
  }
  result += " (major " + std::to_string(numbers.major) + ", minor " + std::to_string(numbers.minor) + ", bug fix " +
            std::to_string(numbers.bugFix) + ", " + std::string(stageName(numbers.stage));
  return result + (numbers.stage == 0 ? ")" : " " + std::to_string(numbers.build) + ")");
}

Value::Dictionary factsFields(const Version& version) {
  const VersionStruct& numbers = version.numbers;
  return {{"input", version.input},
          {"version", version.text()},
          {"shortVersion", version.shortText()},
          {"major", numbers.major},
          {"minor", numbers.minor},
          {"bugFix", numbers.bugFix},
          {"stage", numbers.stage == 0 ? Value() : Value(std::string(1, numbers.stage))},
          {"build", numbers.build}};
}

// Prints versions, each compared with the one before it.
class VersionPrinter {
 public:
  explicit VersionPrinter(bool asJSON) : mAsJSON(asJSON) {}

  void print(const Version& version) {
    const std::int32_t order = mPrevious ? VersionNumbers::compareVersions(&version.numbers, &mPrevious->numbers) : 0;
    if (mAsJSON) {
      Value::Dictionary fields = factsFields(version);
      if (mPrevious) {
        fields.insert({"comparedToPrevious", order});
      }
      printJSON(std::move(fields));
    } else {
      std::string line = quoted(version.input) + ": " + factsText(version);
      if (mPrevious) {
        line += (order > 0 ? ", newer than " : order < 0 ? ", older than " : ", same as ") + mPrevious->shortText();
      }
      printLine(line);
    }
    mPrevious = version;
  }

 private:
  bool mAsJSON;
  std::optional<Version> mPrevious;
};

void printAsJSON(std::string_view whose, const std::optional<Version>& version, bool isTest) {
  Value::Dictionary fields = version ? factsFields(*version) : Value::Dictionary{{"version", Value()}};
  fields.insert({"of", whose});
  if (whose == "program") {
    fields.insert({"isTest", isTest});
  }
  printJSON(std::move(fields));
}

std::string statedText(const std::optional<Version>& version) {
  return version ? quoted(version->input) + ": " + factsText(*version) : "states no version";
}

ExitCode describeProgramAndSystem(bool asJSON) {
  const std::string self = VersionNumbers::selfVersionString();
  const auto program = self.empty() ? std::nullopt : std::optional<Version>(self);
  const std::optional<std::string> stated = VersionNumbers::systemVersionString();
  const auto system = stated ? std::optional<Version>(*stated) : std::nullopt;
  const bool isTest = VersionNumbers::weAreTest();
  if (asJSON) {
    printAsJSON("program", program, isTest);
    printAsJSON("system", system, isTest);
  } else {
    printLine("this program " + statedText(program) + (isTest ? ", a test version" : ""));
    printLine("this system " + statedText(system));
  }
  return ExitCode::AllWell;
}

ExitCode run(const Arguments& arguments) {
  const bool sorts = arguments.has("--sort");
  const bool isAlone = arguments.operands().empty() && !sorts;
  if (arguments.has("--self") && !isAlone) {
    complain("version: --self stands alone; leave out " + (sorts ? "--sort" : quoted(arguments.operands()[0])));
    return ExitCode::CannotRun;
  }
  if (arguments.has("--self") || (isAlone && platform::isTerminal(platform::StandardStream::Input))) {
    return describeProgramAndSystem(arguments.wantsJSON());
  }
  VersionPrinter printer(arguments.wantsJSON());
  std::vector<Version> versions;  // kept only to be sorted
  const ExitCode code = forEachInput("version", arguments, [&](std::string_view input) {
    if (sorts) {
      versions.emplace_back(input);
    } else {
      printer.print(Version(input));
    }
    return true;
  });
  std::ranges::stable_sort(versions, [](const Version& a, const Version& b) {
    return VersionNumbers::compareVersions(&a.numbers, &b.numbers) < 0;
  });
  std::ranges::for_each(versions, [&](const Version& version) { printer.print(version); });
  return code;
}

constexpr OptionSpecification kOptions[] = {{"--self", false}, {"--sort", false}};

}  // namespace

const Command kVersionCommand = {
    .name = "version",
    .summary = "read, compare and sort version numbers",
    .usage = "[--json] [--self | [--sort] [TEXT…]]",
    .help =
        "Prints each version as it is written out and as people write it, its parts, and how it compares with the one\n"
        "before it. A version is up to three numbers, then a stage letter and a build: d is a development version,\n"
        "a an alpha, b a beta, no letter a release.\n"
        "Any text is read. Periods part it; empty parts and a fourth number are left out, what is no number counts\n"
        "as 0, and one too large as the largest. The first a, b or d in a part is its stage letter, in words too:\n"
        "1.2-stable is the alpha 1.2a0.\n"
        "  --self  tells the versions of this program and of this system, as it does at a terminal without texts\n"
        "  --sort  puts the oldest first; equal ones stay in their order\n"
        "Without texts, or for -, reads one a line from standard input.\n"
        "\n"
        "  marlow version --self\n"
        "  marlow version --sort 2.0 2.0b7 2.0a9 10.4.11 10.4.9\n",
    .options = kOptions,
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
