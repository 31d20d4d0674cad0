#include <algorithm>
#include <optional>
#include <string>

#include "platform/bundle.h"
#include "platform/clock.h"
#include "platform/date_text.h"
#include "platform/property_list.h"
#include "shared/preferences.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"
#include "updates/url_fetcher.h"
#include "updates/version_document.h"
#include "updates/version_manager.h"
#include "wording/localized_strings.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

constexpr OptionSpecification kOptions[] = {{"--url", true}, {"--own", true}};
constexpr double kFetchTimeout = 4.0;  // seconds

// Which of the three entries one is, by the type that it was given, and what else a listed one is newer than.
struct Kind {
  std::string_view type;
  std::string_view name;
  std::string_view alsoNewerThan;
};
constexpr Kind kKinds[] = {
    {"Free Update", "update", ""}, {"Latest", "release", ""}, {"Test", "test", ", the release and the update"}};

std::string textUnder(const Value& entry, std::string_view key) {
  const Value* const found = entry.find(key);
  return found != nullptr && found->text() != nullptr ? *found->text() : std::string();
}

void complain(std::string_view subject, const std::string& fault, bool asJSON) {
  if (asJSON) {
    printJSON(Value::Dictionary{{"url", subject}, {"error", fault}});
  }
  marlow::complain("updates: " + quoted(subject) + ": " + fault);
}

void printNewer(const Value& entry, const std::string& own, bool asJSON) {
  const std::string type = textUnder(entry, "type");
  const Kind& kind = *std::ranges::find(kKinds, type, &Kind::type);
  if (asJSON) {
    printJSON(Value::Dictionary{{"kind", kind.name}, {"newerThan", own}, {"entry", entry}});
    return;
  }
  const std::string url = textUnder(entry, "url");
  printLine(std::string(kind.name) + ' ' + textUnder(entry, "version") + " (" + type + "), newer than " + own +
            std::string(kind.alsoNewerThan) + ": " + (url.empty() ? "no address" : url));
}

void printNextCheck(bool asJSON) {
  const std::optional<platform::Date> next = VersionManager::nextCheck(*Preferences::storeOfServedUser());
  const std::optional<std::string> date = next ? platform::dateText(*next) : std::nullopt;
  const bool isDue = next && next->secondsSinceReference < platform::Clock::current().now().secondsSinceReference;
  if (asJSON) {
    printJSON(Value::Dictionary{
        {"checks", next.has_value()}, {"nextCheck", date ? Value(*date) : Value()}, {"isDue", isDue}});
  } else if (!next) {
    printLine("next check: none, checkForAppUpdates is not on");
  } else {
    printLine(std::string("next check: ") + (isDue ? "due since " : "") + date.value_or("beyond the calendar"));
  }
}

// Where the agent would ask on behalf of `own`. An address that has its parameters is asked for as it stands.
std::string addressFor(const Arguments& arguments, const std::string& own) {
  const std::string address =
      arguments.value("--url").value_or(std::string(Utilities::viewOfString("keyLatestVersionURL")));
  return arguments.has("--url") && address.find('?') != address.npos ? address : address + "?fromVersion=" + own;
}

ExitCode evaluate(const std::string& url, const std::string& text, const std::string& own, bool asJSON) {
  const VersionDocument document = versionDocumentFromText(text);
  if (document.release.empty() && document.update.empty() && document.test.empty()) {
    platform::PropertyListError error{.message = "it has no entry release, update or test", .line = 0};
    if (text.size() > kMaximumVersionDocumentSize) {
      error.message = "it is too long";
    } else {
      static_cast<void>(platform::propertyListFromXML(text, &error));
    }
    complain(url, "the answer is no version document: " + error.message, asJSON);
    return ExitCode::BadInput;
  }
  VersionStruct version;
  static_cast<void>(VersionNumbers::stringToVersion(own, &version));
  const NewerVersions newer = newerVersionsOf(document, version);
  for (const Value& entry : newer.entries) {
    printNewer(entry, own, asJSON);
  }
  if (newer.entries.empty() && !asJSON) {
    printLine("nothing newer than " + own);
  }
  return ExitCode::AllWell;
}

ExitCode fetchAndEvaluate(const Arguments& arguments, const std::string& own) {
  const std::string url = addressFor(arguments, own);
  URLFetcher fetcher;
  const std::int32_t result = fetcher.startURLRequest({.url = url, .withTimeout = kFetchTimeout});
  const std::optional<std::string> text = fetcher.textReturned();
  if (result != URLFetcher::kFinished || !text || text->empty()) {
    complain(url, result != URLFetcher::kFinished ? "not fetched (" + std::to_string(result) + ")" : "no answer",
             arguments.wantsJSON());
    return ExitCode::CannotRun;
  }
  return evaluate(url, *text, own, arguments.wantsJSON());
}

ExitCode run(const Arguments& arguments) {
  if (!arguments.operands().empty()) {
    marlow::complain("updates: takes no operands; see marlow updates --help");
    return ExitCode::CannotRun;
  }
  const Value stated = platform::Bundle::main().infoValue("CFBundleVersion");
  const std::string own = arguments.value("--own").value_or(stated.text() == nullptr ? "" : *stated.text());
  if (own.empty()) {
    marlow::complain("updates: this program states no version; give one with --own");
    return ExitCode::CannotRun;
  }
  const ExitCode code = fetchAndEvaluate(arguments, own);
  printNextCheck(arguments.wantsJSON());
  return code;
}

}  // namespace

const Command kUpdatesCommand = {
    .name = "updates",
    .summary = "ask whether a newer version is offered",
    .usage = "[--url URL] [--own VERSION] [--json]",
    .help =
        "Fetches the version document, as the agent does, and prints each version in it that is newer, why, and where\n"
        "to get it; then when the next check is due. Takes at most four seconds.\n"
        "  --url URL      asks there instead of at the configured address. ?fromVersion= and the version are put "
        "behind\n"
        "                 it, unless it has a ? of its own\n"
        "  --own VERSION  compares with this version, instead of this program's own\n"
        "The exit code is 1 when the answer is no version document, and 2 when there is no answer. The next check is\n"
        "worked out from checkForAppUpdates, updatesCheckInterval and timeOfLastVersionCheck of marlow prefs. This "
        "tool\n"
        "stores nothing: it is no check that the programs count, and no program start.\n"
        "\n"
        "  marlow updates\n"
        "  marlow updates --url http://127.0.0.1:8000/version.xml --own 2.0b3\n"
        "  marlow updates --json\n",
    .options = kOptions,
    .wordsThings = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
