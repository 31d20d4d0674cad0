// The settings store in files: how the library and its tests make one.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/linux/settings_file.h"
#include "platform/settings_store.h"
#include "platform/users.h"

namespace SharedClasses::platform {

struct SettingsSetup {
  std::string file;                            // the user's; empty for a store that keeps nothing on disk
  std::string whyNoFile = {};                  // for the log, where that is empty
  std::vector<std::string> machineFiles = {};  // the first that holds a key counts
  std::optional<User> user = {};               // with whose rights files are used; absent for the program's own
  const Clock* clock = nullptr;  // tells when to look for changes, outlives the store; null for the system's
  SystemCalls::Probe probe = nullptr;
};

[[nodiscard]] std::shared_ptr<SettingsStore> makeFileSettingsStore(const SettingsSetup& setup);

// Where a user's settings are: the file in the folder `configHome` where that is an absolute path, else in the one that
// is usual in `home`; empty without either.
[[nodiscard]] std::string userSettingsFile(const std::optional<std::string>& configHome, const std::string& home);

// The machine's files: in those folders of `configFolders`, parted by colons, that are absolute paths; in the usual
// folder when it is absent or empty.
[[nodiscard]] std::vector<std::string> machineSettingsFiles(const std::optional<std::string>& configFolders);

}  // namespace SharedClasses::platform
