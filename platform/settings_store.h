// Settings: values under names, one store for each user, shared by all programs of that user. What one program sets,
// the others see without a restart. docs/settings.md says what is promised when programs are killed, disks are full and
// files are damaged. Safe on any thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace SharedClasses::platform {

class SettingsStore {
 public:
  SettingsStore() = default;
  SettingsStore(const SettingsStore&) = delete;
  SettingsStore& operator=(const SettingsStore&) = delete;
  virtual ~SettingsStore() = default;

  // The value under `key`: what was set here, else what the user's file holds, else what the machine's holds; absent
  // when none does. Sees what another program has saved a tenth of a second ago or earlier.
  [[nodiscard]] virtual Value value(std::string_view key) const = 0;

  // Sets the value under `key` for this program at once and for the others with the next save, which follows by itself
  // within a second where the calling thread's run loop runs, and at the end of the thread and of the program. An
  // absent value takes the key out; what the machine's file holds then shows. Values that a property list cannot hold
  // (objects, colours) count as absent and are logged; a key that it cannot hold (control characters, bytes that are
  // not UTF-8) is logged and nothing is set. What a file rounds (dates, to whole seconds) is rounded at once.
  virtual void set(std::string_view key, Value value) = 0;

  // Saves what was set and reads what others have saved. False when it could not be saved; the reason is logged, once
  // until it changes, nothing is lost, and saving is tried again by itself. Writes nothing when there is nothing new.
  // Waits for other programs that are saving, at most two seconds; reads on other threads go on meanwhile.
  virtual bool synchronize() = 0;

  // All that value() would give.
  [[nodiscard]] virtual Value::Dictionary all() const = 0;

  // Whether every file that there is could be read when it was last looked at; the log says why not.
  [[nodiscard]] virtual bool isReadable() const { return true; }

  // The path of the user's file, which need not exist; empty for a store without one.
  [[nodiscard]] virtual std::string path() const = 0;

  // The store of the user whose rights the program has; lives until the process ends. Where its file is, is asked of
  // the environment at the first call.
  [[nodiscard]] static std::shared_ptr<SettingsStore> standard();

  // Puts `store` in the place of the standard one; null for the usual one. For programs with a store of their own, and
  // tests.
  static void setStandard(std::shared_ptr<SettingsStore> store);

  // The store of the user with that login name, opened with the rights of that user and kept in files of that user;
  // only the administrator may open that of another. For a user that does not exist a store that keeps nothing on disk
  // and whose synchronize() is false. The same store for the same user as long as one is held; standard() for the user
  // whose rights the program has.
  [[nodiscard]] static std::shared_ptr<SettingsStore> ofUser(const std::string& loginName);
};

}  // namespace SharedClasses::platform
