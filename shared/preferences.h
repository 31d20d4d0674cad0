// The user's settings that the GUI and the agent share: the table of their defaults, the count of program starts by
// which the first is told from later ones, and where the machine stands.
// The first use belongs on the main thread; from then on all of it is safe on any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "platform/settings_store.h"
#include "platform/value.h"

namespace SharedClasses {

class Preferences {
 public:
  // The preferences that were made last, or, where those are gone, the library's own, made at first need and never
  // destroyed. What is said of "the shared ones" below calls this.
  [[nodiscard]] static Preferences& sharedPreferences();

  // `init`
  // Preferences in the store of the user who is served (see storeOfServedUser). They become the shared ones and count a
  // program start: "runCount" grows by 1 and stays at the largest number once it is there. Where it is absent, this is
  // the first start, and all defaults are written. Only then is the store told to save; a count goes out by itself.
  // A program has no need to make any beside the shared ones: each counts as one more start.
  Preferences();
  Preferences(const Preferences&) = delete;
  Preferences& operator=(const Preferences&) = delete;
  // `dealloc`
  // Lets go of the store. Where these are the shared ones, there are none from then on.
  ~Preferences();

  // Never null.
  [[nodiscard]] const std::shared_ptr<platform::SettingsStore>& userDefaults() const { return mUserDefaults; }

  // The value under `key`; absent for an empty key and for one without a value. "latitude" and "longitude" are computed
  // from the degrees, minutes and seconds that are stored: in degrees, positive north and east.
  // Kept: reads this instance's store while setForKey() writes that of the shared ones; after another instance was
  // made, what is set is not what is read.
  [[nodiscard]] platform::Value get(std::string_view key) const;

  // `set:forKey:` — sets `key` in the store of the shared ones; an absent value takes it out. Saved as the store says
  // (platform/settings_store.h); nobody is told.
  // Kept: "latitude", "longitude" and the empty key are written like any other, and get() never reads them.
  void setForKey(platform::Value value, std::string_view key);

  // Saves the store of the shared ones and reads what other programs have saved there. A failure is logged by the
  // store.
  void refresh();

  // Writes every default, the count of starts and the machine's location among them, into the store of the shared ones,
  // takes out the keys whose default is to be absent, and refreshes. Other keys stay.
  void reset();

  // Whether this program start is the first, or the first since a reset: "runCount" is absent or at most 1.
  [[nodiscard]] bool isFirstRun() const;

  // Kept: always false, and setting it changes nothing. A program that wants to know whether its welcome was shown has
  // to keep that itself.
  [[nodiscard]] bool firstRunHandled() const;
  void setFirstRunHandled();

  // "temperature" and "pressure" with the units that the shared ones hold; absent values where they hold none.
  [[nodiscard]] static platform::Value::Dictionary preferredUnits();

  // What can be known of the settings without counting a program start.

  // The store of the user whose rights the program has; for the administrator's, that of marlowUser()
  // (system/processes/process_detection.h).
  [[nodiscard]] static std::shared_ptr<platform::SettingsStore> storeOfServedUser();

  // What get() reads from `store`.
  [[nodiscard]] static platform::Value valueInStore(const platform::SettingsStore& store, std::string_view key);

  // `value` as the integer that it means: a text, which people who mend the file by hand may have written, by the
  // digits that it begins with; 0 for what is no number.
  [[nodiscard]] static std::int64_t integerOf(const platform::Value& value);

  // `value` as yes or no. A number is yes unless it is 0. Of texts, which people who mend the file by hand may have
  // written, "yes", "true", "on" and "1" are yes, "no", "false", "off" and "0" are no, in any case and between blanks.
  // Absent for all else.
  [[nodiscard]] static std::optional<bool> booleanOf(const platform::Value& value);

  // The keys that have a default, in the order in which reset() writes them.
  [[nodiscard]] static std::span<const std::string_view> defaultKeys();

  // The type of the values that the programs keep under `key`; absent for a key that has no default.
  [[nodiscard]] static std::optional<platform::Value::Type> typeOfDefault(std::string_view key);

  // What reset() would write under `key` now; absent for a key that it takes out and for one that has no default.
  [[nodiscard]] static platform::Value defaultValue(std::string_view key);

 private:
  const std::shared_ptr<platform::SettingsStore> mUserDefaults;  // never null
  // Kept: nothing reads these two; isFirstRun() asks the store.
  [[maybe_unused]] bool mFirstRun = false;         // found no "runCount" and wrote the defaults
  [[maybe_unused]] bool mFirstRunHandled = false;  // never set
};

// The shared ones; null until the first use, and again once they are destroyed. Sharing them is sharedPreferences()'
// work.
extern Preferences* gPreferences;

}  // namespace SharedClasses
