#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/bundle.h"
#include "platform/clock.h"
#include "platform/date_text.h"
#include "platform/log.h"
#include "platform/property_list.h"
#include "platform/text.h"
#include "shared/constants.h"
#include "shared/preferences.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"
#include "updates/safe_url_connection.h"
#include "updates/url_fetcher.h"
#include "updates/version_document.h"
#include "updates/version_manager.h"
#include "wording/localized_strings.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

constexpr OptionSpecification kOptions[] = {{"--url", true}, {"--own", true}};
constexpr double kTimeLimit = 4.0;  // seconds

// One of the three entries of a document, by the type that it was given.
struct Kind {
  std::string_view type;
  std::string_view name;
  Value::Dictionary VersionDocument::*entry;
};
constexpr Kind kKinds[] = {{"Free Update", "update", &VersionDocument::update},
                           {"Latest", "release", &VersionDocument::release},
                           {"Test", "test", &VersionDocument::test}};

std::string textUnder(const Value& entry, std::string_view key) {
  const Value* const found = entry.find(key);
  return found != nullptr && found->text() != nullptr ? *found->text() : std::string();
}

// "release 2.1"
std::string named(std::string_view kind, const std::string& version) {
  return std::string(kind) + ' ' + (version.empty() ? "without a version" : version);
}

std::string joined(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& text : texts) {
    result += (result.empty() ? "" : ", ") + text;
  }
  return result;
}

Value listOf(const std::vector<std::string>& texts) {
  return Value::List(texts.begin(), texts.end());
}

ExitCode refuse(const std::string& url, const std::string& fault, ExitCode code, bool asJSON) {
  if (asJSON) {
    printJSON(Value::Dictionary{{"url", url}, {"error", fault}});
  }
  complain("updates: " + quoted(url) + ": " + fault);
  return code;
}

// What `document` offers, placeholders left out. Of all kinds but `other`.
std::vector<std::string> offersIn(const VersionDocument& document, std::string_view other = "") {
  std::vector<std::string> offers;
  for (const Kind& kind : kKinds) {
    const Value::Dictionary& entry = document.*kind.entry;
    const std::string version = textUnder(entry, "version");
    if (!entry.empty() && kind.name != other && version.find("placeholder") == version.npos) {
      offers.push_back(named(kind.name, version));
    }
  }
  return offers;
}

void printNewer(const Value& entry, const VersionDocument& document, const std::string& own, bool asJSON) {
  const std::string type = textUnder(entry, "type");
  const Kind& kind = *std::ranges::find(kKinds, type, &Kind::type);
  std::vector<std::string> older{own};
  if (kind.name == "test") {  // listed only where it is newer than both others
    const std::vector<std::string> others = offersIn(document, kind.name);
    older.insert(older.end(), others.begin(), others.end());
  }
  if (asJSON) {
    printJSON(Value::Dictionary{{"kind", kind.name}, {"newerThan", listOf(older)}, {"entry", entry}});
    return;
  }
  const std::string url = textUnder(entry, "url");
  printLine(named(kind.name, textUnder(entry, "version")) + " (" + type + "), newer than " + joined(older) + ": " +
            (url.empty() ? "no address" : url));
}

// Each entry that is newer than `own`, or that there is none.
void printOffers(const VersionDocument& document, const std::string& own, bool asJSON) {
  VersionStruct version;
  static_cast<void>(VersionNumbers::stringToVersion(own, &version));
  const NewerVersions newer = newerVersionsOf(document, version);
  for (const Value& entry : newer.entries) {
    printNewer(entry, document, own, asJSON);
  }
  if (!newer.entries.empty()) {
    return;
  }
  const std::vector<std::string> offers = offersIn(document);
  if (asJSON) {
    printJSON(Value::Dictionary{{"kind", "none"}, {"newerThan", listOf({own})}, {"onOffer", listOf(offers)}});
  } else {
    printLine("nothing newer than " + own + "; on offer: " + (offers.empty() ? "nothing" : joined(offers)));
  }
}

// Why `text` is no version document; empty where it is one.
std::string faultOf(std::string_view text) {
  if (text.size() > kMaximumVersionDocumentSize) {
    return "it is longer than " + std::to_string(kMaximumVersionDocumentSize) + " bytes";
  }
  platform::PropertyListError error;
  const std::optional<Value> root = platform::propertyListFromXML(text, &error);
  if (!root) {
    return "line " + std::to_string(error.line) + ": " + error.message;
  }
  return root->type() == Value::Type::Dictionary ? "" : "it is no dictionary";
}

// A fetch that keeps what the connection reported.
class Fetch : public URLFetcher {
 public:
  void connectionDidFailWithError(SafeURLConnection& connection, const URLConnectionError& error) override {
    mReport = textUnder(error.userInfo, "errorString");
    connectionDidFinishLoading(connection);
  }

  // Absent where the connection did not fail.
  [[nodiscard]] const std::optional<std::string>& report() const { return mReport; }

 private:
  std::optional<std::string> mReport;
};

struct NoLog : platform::LogSink {
  void write(std::string_view /*message*/) override {}
};

ExitCode fetchAndEvaluate(const std::string& url, const std::string& own, bool asJSON) {
  Fetch fetch;
  const std::shared_ptr<platform::LogSink> log = platform::setLogSink(std::make_shared<NoLog>());
  const std::int32_t result = fetch.startURLRequest({.url = url, .withTimeout = kTimeLimit});
  platform::setLogSink(log);  // what it would say is told below
  const std::string text = fetch.textReturned().value_or("");
  if (!text.empty()) {
    const std::string fault = faultOf(text);
    if (!fault.empty()) {
      return refuse(url, "the answer is no version document: " + fault, ExitCode::BadInput, asJSON);
    }
    printOffers(versionDocumentFromText(text), own, asJSON);
    return ExitCode::AllWell;
  }
  std::string fault;
  if (result != URLFetcher::kFinished) {
    fault = "not fetched (" + std::to_string(result) + ")";
  } else if (!fetch.report()) {
    fault = "nothing came: no server is there, it refused, or its answer is empty; curl -v and the address tell more";
  } else if (*fetch.report() == "Task timed out.") {
    fault = "no answer within 4 seconds, or one that is too long";
  } else if (fetch.report()->empty()) {
    fault = "curl could not be started, or its output was not UTF-8";
  } else {
    return refuse(url, "the answer is no version document: it is not UTF-8", ExitCode::BadInput, asJSON);
  }
  return refuse(url, fault, ExitCode::CannotRun, asJSON);
}

// When the next check is due and why; `date` is null where there is none, or none was made yet.
struct NextCheck {
  Value date;
  bool isWanted;
  bool isDue;
  std::string why;
};

NextCheck nextCheck(const platform::SettingsStore& store) {
  const std::optional<platform::Date> next = VersionManager::nextCheck(store);
  if (!next) {
    const Value wanted = Preferences::valueInStore(store, kPrefKeyCheckForNewVersions);
    std::string why = "checkForAppUpdates is off";
    if (wanted.isAbsent()) {
      const bool wasStarted = !Preferences::valueInStore(store, "runCount").isAbsent();
      why = "checkForAppUpdates is not set, which counts as no";
      why += wasStarted ? "" : "; the first start of a program switches it on";
    } else if (!Preferences::booleanOf(wanted)) {
      why = "checkForAppUpdates is neither yes nor no, which counts as no";
    }
    return {{}, false, false, why};
  }
  const bool isDue = next->secondsSinceReference < platform::Clock::current().now().secondsSinceReference;
  const Value last = Preferences::valueInStore(store, kPrefKeyTimeOfLastVersionCheck);
  const double time = last.realValue().value_or(static_cast<double>(Preferences::integerOf(last)));
  if (time == 0.0 || std::isnan(time)) {
    return {{}, true, isDue, "none was made yet"};
  }
  const std::optional<std::string> date = platform::dateText(*next);
  return {date ? Value(*date) : Value(), true, isDue, date || isDue ? "" : "its time lies beyond the calendar"};
}

void printNextCheck(bool asJSON) {
  const NextCheck next = nextCheck(*Preferences::storeOfServedUser());
  if (asJSON) {
    printJSON(Value::Dictionary{
        {"checks", next.isWanted}, {"nextCheck", next.date}, {"isDue", next.isDue}, {"why", next.why}});
    return;
  }
  const std::string* const date = next.date.text();
  const std::string when = date != nullptr ? (next.isDue ? "due since " : "") + *date : next.isDue ? "due" : "none";
  printLine("next check: " + when + (next.why.empty() ? "" : ", " + next.why) +
            (next.isWanted ? " (a program that already runs checks at its own interval)" : ""));
}

// Whether `url` is one that the fetch takes, to which parameters can be put, and which is not several to curl.
bool canBeAsked(std::string_view url) {
  const std::string_view start = url.substr(0, url.find_first_of("/?", url.find("://") + 3));
  const std::string_view host = start.substr(std::min(start.find('['), start.size()));
  const bool isRange = host.substr(0, host.find_first_of("%]")).find('-') != host.npos;
  if (!SafeURLConnection::isWebAddress(url) || isRange || url.find_first_of("[]", start.size()) != url.npos) {
    return false;
  }
  for (const char32_t c : platform::CodePoints(url)) {
    if (c == U'#' || c == U'{' || c == U'}' || platform::isBlank(c) || drivesTerminal(c)) {
      return false;
    }
  }
  return true;
}

// Whether `text` can be meant as a version. "3b1", without a period, would count as 0.0.3.
bool isVersion(std::string_view text) {
  const auto isDigit = [](char c) { return platform::isASCIIDigit(static_cast<unsigned char>(c)); };
  const std::string_view major = text.substr(0, text.find('.'));
  return !major.empty() && std::ranges::all_of(major, isDigit) && std::ranges::all_of(text, [&](char c) {
    return isDigit(c) || platform::isASCIILetter(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '_';
  });
}

// What is wrong with the arguments; empty where nothing is.
std::string faultOf(const Arguments& arguments) {
  if (!arguments.operands().empty()) {
    return "takes no operands; see marlow updates --help";
  }
  if (const std::optional<std::string> url = arguments.value("--url"); url && !canBeAsked(*url)) {
    return "--url " + quoted(*url) +
           ": an address begins with http:// or https://, in lower case, and holds no #, no { }, no [ ] but those of a "
           "numeric host, no blank and no control character";
  }
  if (const std::optional<std::string> own = arguments.value("--own"); own && !isVersion(*own)) {
    return "--own " + quoted(*own) +
           R"(: a version begins with a number and a period, or is one; else it holds letters, digits, ".", "-" and "_")";
  }
  return "";
}

ExitCode run(const Arguments& arguments) {
  if (const std::string fault = faultOf(arguments); !fault.empty()) {
    complain("updates: " + fault);
    return ExitCode::CannotRun;
  }
  const Value stated = platform::Bundle::main().infoValue("CFBundleVersion");
  const std::string own = arguments.value("--own").value_or(stated.text() == nullptr ? "" : *stated.text());
  if (own.empty()) {
    complain("updates: this program states no version; give one with --own");
    return ExitCode::CannotRun;
  }
  std::string url = arguments.value("--url").value_or(std::string(Utilities::viewOfString("keyLatestVersionURL")));
  if (!arguments.has("--url") || url.find('?') == url.npos) {
    url += "?fromVersion=" + own;  // as the agent asks; an address that has its parameters is asked for as it stands
  }
  const ExitCode code = fetchAndEvaluate(url, own, arguments.wantsJSON());
  printNextCheck(arguments.wantsJSON());
  return code;
}

}  // namespace

const Command kUpdatesCommand = {
    .name = "updates",
    .summary = "ask whether a newer version is offered",
    .usage = "[--url URL] [--own VERSION] [--json]",
    .help =
        "Fetches the version document, as the agent does, and prints each version in it that is newer, than what, and\n"
        "where to get it; then when the next check is due. Takes at most four seconds.\n"
        "  --url URL      asks there instead of at the configured address: http:// or https:// in lower case, without\n"
        "                 #, { }, blanks and control characters, and with [ ] only around a numeric host. The query\n"
        "                 ?fromVersion= and the version are put behind it, unless it has a ? of its own. A complaint\n"
        "                 repeats it, and a password in it\n"
        "  --own VERSION  compares with this version, instead of this program's own: a digit, then digits, letters,\n"
        "                 \".\", \"-\" and \"_\"\n"
        "  --json         a line for each newer version: its kind, the entry, and newerThan, the own version and then\n"
        "                 others behind their kind (\"update 2.0.1\"); or one of the kind \"none\" with what is\n"
        "                 onOffer; or one with url and error. Then one with checks, isDue, nextCheck and why\n"
        "The exit code is 1 when the answer is no version document or longer than 262144 bytes. It is 2 when nothing\n"
        "came, not all came within four seconds, or it was more than curl's pipe holds. A document may well offer\n"
        "nothing. Redirects are not followed.\n"
        "The next check is worked out from checkForAppUpdates, updatesCheckInterval and timeOfLastVersionCheck of\n"
        "marlow prefs: a program that starts when one is due checks at once; one that already runs checks at its own\n"
        "interval, counted from its start. This tool stores nothing: it is no check that the programs count, and no\n"
        "program start.\n"
        "\n"
        "  marlow updates\n"
        "  marlow updates --url http://127.0.0.1:8000/version.xml --own 2.0b3\n"
        "  marlow updates --json\n",
    .options = kOptions,
    .wordsThings = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
