#include "shared/preferences.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <variant>

#include "platform/files.h"
#include "platform/saturating.h"
#include "platform/text.h"
#include "platform/users.h"
#include "platform/workspace.h"
#include "shared/constants.h"
#include "sun/machine_location.h"
#include "system/miscellany/folders.h"
#include "system/processes/process_detection.h"

namespace SharedClasses {

namespace {

using platform::SettingsStore;
using platform::Value;
using Type = Value::Type;

constexpr std::string_view kRunCount = "runCount";

// A coordinate without its sign.
struct Angle {
  std::int64_t degrees = 0;
  std::int64_t minutes = 0;
  std::int64_t seconds = 0;
};

// One of the two coordinates: the keys that it is stored under, and the letter that makes it negative.
struct Coordinate {
  std::string_view key;  // that get() computes
  std::string_view degrees;
  std::string_view minutes;
  std::string_view seconds;
  std::string_view side;
  std::string_view negativeSide;
};

constexpr Coordinate kLatitude{"latitude", "latitudeDegrees", "latitudeMinutes", "latitudeSeconds", "latitudeNS", "S"};
constexpr Coordinate kLongitude{"longitude",        "longitudeDegrees", "longitudeMinutes",
                                "longitudeSeconds", "longitudeWE",      "W"};

// Where the machine stands, as the defaults store it.
struct Place {
  Angle latitude;
  Angle longitude;
  bool isNorth = false;
  bool isWest = false;
};

Angle angleOf(double degrees) {
  Angle angle;
  const double magnitude = std::abs(degrees);
  angle.degrees = platform::saturatingCast<std::int64_t>(magnitude);
  const double minutes = (magnitude - static_cast<double>(angle.degrees)) * 60;
  angle.minutes = platform::saturatingCast<std::int64_t>(minutes);
  angle.seconds = platform::saturatingCast<std::int64_t>((minutes - static_cast<double>(angle.minutes)) * 60);
  return angle;
}

Place machinePlace() {
  double latitude = 0;
  double longitude = 0;
  Utilities::guessBestLatitudeAndLogitude(&latitude, &longitude);
  // Kept: the equator is stored as south, which makes its latitude -0.0; the meridian is stored as east.
  return {angleOf(latitude), angleOf(longitude), latitude > 0, longitude < 0};
}

std::string scriptEditor() {
  const std::string editor = platform::editorOfScripts();
  return !editor.empty() ? editor : platform::pathInFolder("/usr/share/applications", "AppleScript/Script Editor");
}

// Empty for a user without a home.
std::string pathToDataModel() {
  return platform::pathInFolder(Utilities::pathToDirectoryInDomain("Application Support", "User"),
                                "Marlow Home/Hardware & Schedules.xml");
}

// One row of the table of defaults: a key, and what is written under it; a function where that depends on the machine.
struct Default {
  std::string_view key;
  Type type;
  std::variant<std::monostate, bool, std::int64_t, double, std::string_view, Value (*)(const Place& place)> content;
};

constexpr Default boolean(std::string_view key, bool content) {
  return {key, Type::Boolean, content};
}
constexpr Default integer(std::string_view key, std::int64_t content) {
  return {key, Type::Integer, content};
}
constexpr Default real(std::string_view key, double content) {
  return {key, Type::Real, content};
}
constexpr Default text(std::string_view key, std::string_view content) {
  return {key, Type::Text, content};
}
constexpr Default computed(std::string_view key, Type type, Value (*content)(const Place& place)) {
  return {key, type, content};
}
constexpr Default noData(std::string_view key) {
  return {key, Type::Data, std::monostate()};
}

constexpr Default kDefaults[] = {
    integer(kRunCount, 1),
    boolean("runs24-7", false),
    boolean("runsAsRoot", false),
    boolean(kPrefKeyCheckForNewVersions, true),
    integer(kPrefKeyVersionCheckInterval, 604800),  // seconds
    integer(kPrefKeyTimeOfLastVersionCheck, 0),
    boolean(kPrefKeySetupAssistanceWanted, true),
    integer("scheduleSetInEffect", 0),
    boolean(kPrefKeyLogCommandsSent, true),
    boolean(kPrefKeyLogCommandsHeard, true),
    boolean(kPrefKeyLogTimestamps, true),
    boolean(kPrefKeyLimitLogs, true),
    integer(kPrefKeyLogLimit, 20),
    text("logTimestampFormat", "mac"),
    boolean("useMacLocation", true),
    computed(kLatitude.degrees, Type::Integer, [](const Place& place) -> Value { return place.latitude.degrees; }),
    computed(kLatitude.minutes, Type::Integer, [](const Place& place) -> Value { return place.latitude.minutes; }),
    computed(kLatitude.seconds, Type::Integer, [](const Place& place) -> Value { return place.latitude.seconds; }),
    computed(kLongitude.degrees, Type::Integer, [](const Place& place) -> Value { return place.longitude.degrees; }),
    computed(kLongitude.minutes, Type::Integer, [](const Place& place) -> Value { return place.longitude.minutes; }),
    computed(kLongitude.seconds, Type::Integer, [](const Place& place) -> Value { return place.longitude.seconds; }),
    computed(kLatitude.side, Type::Text, [](const Place& place) -> Value { return place.isNorth ? "N" : "S"; }),
    computed(kLongitude.side, Type::Text, [](const Place& place) -> Value { return place.isWest ? "W" : "E"; }),
    integer(kPrefKeySunTolerance, 10),
    boolean("daylightSavingsUpdateClocks", true),
    boolean("daylightSavingsStoreFreshSchedule", true),
    boolean("daylightSavingsReminder", false),
    boolean(kPrefKeyRespondToVoiceCmds, false),
    text(kPrefKeyAnnouncementVoice, "com.apple.speech.synthesis.voice.Vicki"),
    boolean("enableDashboardWidget", false),
    boolean("enableYahooWidget", false),
    boolean(kPrefKeyUSBAccessWanted, false),
    boolean(kPrefKeyDesktopRemoteWanted, false),
    boolean(kPrefKeyWebCGIWanted, false),
    boolean("enableSpotlight", false),
    boolean("enableSherlock", false),
    boolean("enableVoiceModems", false),
    boolean(kPrefKeyX10QuorraServerWanted, false),
    integer(kPrefKeyX10QuorraServerPort, 6003),
    integer(kPrefKeyVeltaroServerPort, 6004),
    computed("scriptEditor", Type::Text, [](const Place&) -> Value { return scriptEditor(); }),
    text("lastInterfaceTypeUsed", "CM-15"),
    text("lastDeviceTypeUsed", "LM-467"),
    text("lastLogSearchString", ""),
    text("lastHouseCodeUsed", "A"),
    text("lastGoodAgentPath", ""),
    integer("rowIndexOfLastScheduleSelected", 0),
    text("columnsShownInListView", "name,id"),
    text("lastViewInMainWindow", "list"),
    text("lastSortColumnInMainWindow", "name"),
    text("lastSortDirectionInMainWindow", "ascending"),
    text("columnOrderInMainWindow", "name,id"),
    text("lastPrefTabSelected", "general"),
    real("widthOfSchedulesList", 132),
    real("heightOfSchedulesList", 78),
    text("latestDateSeen", ""),
    computed("pathToDataModel", Type::Text, [](const Place&) -> Value { return pathToDataModel(); }),
    noData("hardwarePrintInfo"),
    noData("schedulePrintInfo"),
    noData("gadgetGuidePrintInfo"),
    noData("logPrintInfo"),
    text("temperatureUnits", "F"),
    text("pressureUnits", "mBar"),
    real("attributeLifetime", 300),         // seconds
    real("attributeRefreshInterval", 600),  // seconds
    boolean("attributeRefreshWanted", true),
};

constexpr auto kDefaultKeys = [] {
  std::array<std::string_view, std::size(kDefaults)> keys;
  std::ranges::transform(kDefaults, keys.begin(), &Default::key);
  return keys;
}();

const Default* defaultOf(std::string_view key) {
  const auto* const found = std::ranges::find(kDefaults, key, &Default::key);
  return found != std::end(kDefaults) ? found : nullptr;
}

// What the rows' contents are as values. Looks the machine's place up once, when a row asks for it.
class ContentOf {
 public:
  Value operator()(std::monostate /*none*/) { return {}; }
  Value operator()(Value (*content)(const Place& place)) {
    if (!mPlace) {
      mPlace = machinePlace();
    }
    return content(*mPlace);
  }
  template <class Content>
  Value operator()(Content content) {
    return content;
  }

 private:
  std::optional<Place> mPlace;
};

double degreesInStore(const SettingsStore& store, const Coordinate& coordinate) {
  const auto part = [&store](std::string_view key) {
    return static_cast<double>(Preferences::integerOf(store.value(key)));
  };
  const double degrees = part(coordinate.degrees) + part(coordinate.minutes) / 60.0 + part(coordinate.seconds) / 3600.0;
  const Value side = store.value(coordinate.side);
  const bool isNegative = side.text() != nullptr && *side.text() == coordinate.negativeSide;
  return isNegative ? -degrees : degrees;
}

}  // namespace

Preferences* gPreferences = nullptr;

Preferences& Preferences::sharedPreferences() {
  Preferences* shared = std::atomic_ref(gPreferences).load(std::memory_order_acquire);
  if (shared == nullptr) {
    static auto* const sOwn = new Preferences;
    // It has shared itself, unless it was made long ago.
    const bool isShared = std::atomic_ref(gPreferences).compare_exchange_strong(shared, sOwn);
    return isShared ? *sOwn : *shared;
  }
  return *shared;
}

Preferences::Preferences() : mUserDefaults(storeOfServedUser()) {
  std::atomic_ref(gPreferences).store(this, std::memory_order_release);
  const Value runCount = mUserDefaults->value(kRunCount);
  if (runCount.isAbsent()) {
    mFirstRun = true;
    reset();
    return;
  }
  const std::int64_t count = integerOf(runCount);
  mUserDefaults->set(kRunCount, count < std::numeric_limits<std::int64_t>::max() ? count + 1 : count);
}

Preferences::~Preferences() {
  Preferences* shared = this;
  std::atomic_ref(gPreferences).compare_exchange_strong(shared, nullptr);
}

Value Preferences::get(std::string_view key) const {
  static_cast<void>(sharedPreferences());
  return valueInStore(*mUserDefaults, key);
}

void Preferences::setForKey(Value value, std::string_view key) {
  sharedPreferences().mUserDefaults->set(key, std::move(value));
}

void Preferences::refresh() {
  static_cast<void>(sharedPreferences().mUserDefaults->synchronize());
}

void Preferences::reset() {
  SettingsStore& store = *sharedPreferences().mUserDefaults;
  ContentOf contentOf;
  for (const Default& row : kDefaults) {
    store.set(row.key, std::visit(contentOf, row.content));
  }
  refresh();
}

bool Preferences::isFirstRun() const {
  return integerOf(mUserDefaults->value(kRunCount)) <= 1;
}

bool Preferences::firstRunHandled() const {
  static_cast<void>(sharedPreferences());
  return false;
}

void Preferences::setFirstRunHandled() {
  static_cast<void>(sharedPreferences());
}

Value::Dictionary Preferences::preferredUnits() {
  const Preferences& shared = sharedPreferences();
  return {{"temperature", shared.get("temperatureUnits")}, {"pressure", shared.get("pressureUnits")}};
}

std::shared_ptr<SettingsStore> Preferences::storeOfServedUser() {
  constexpr std::string_view kAdministrator = "root";
  if (platform::currentUserName() == kAdministrator) {
    const std::string servedUser = Utilities::marlowUser();
    if (servedUser != kAdministrator) {
      return SettingsStore::ofUser(servedUser);
    }
  }
  return SettingsStore::standard();
}

Value Preferences::valueInStore(const SettingsStore& store, std::string_view key) {
  if (key.empty()) {
    return {};
  }
  for (const Coordinate& coordinate : {kLatitude, kLongitude}) {
    if (key == coordinate.key) {
      return degreesInStore(store, coordinate);
    }
  }
  return store.value(key);
}

std::int64_t Preferences::integerOf(const Value& value) {
  if (const std::string* const text = value.text()) {
    return platform::lenientInteger64(*text);
  }
  return value.integerValue().value_or(0);
}

std::optional<bool> Preferences::booleanOf(const Value& value) {
  struct Word {
    std::string_view word;
    bool meaning;
  };
  constexpr Word kWords[] = {{"yes", true}, {"no", false},  {"true", true}, {"false", false},
                             {"on", true},  {"off", false}, {"1", true},    {"0", false}};
  if (const std::string* const text = value.text()) {
    const auto* const found = std::ranges::find(kWords, platform::lowercased(platform::trimmed(*text)), &Word::word);
    return found != std::end(kWords) ? std::optional(found->meaning) : std::nullopt;
  }
  return value.booleanValue();
}

std::span<const std::string_view> Preferences::defaultKeys() {
  return kDefaultKeys;
}

std::optional<Type> Preferences::typeOfDefault(std::string_view key) {
  const Default* const row = defaultOf(key);
  return row != nullptr ? std::optional(row->type) : std::nullopt;
}

Value Preferences::defaultValue(std::string_view key) {
  const Default* const row = defaultOf(key);
  return row != nullptr ? std::visit(ContentOf(), row->content) : Value();
}

}  // namespace SharedClasses
