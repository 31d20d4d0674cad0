#include "platform/settings_store.h"

#include <unistd.h>

#include <map>
#include <mutex>
#include <utility>

#include "platform/files.h"
#include "platform/linux/file_settings_store.h"
#include "platform/text_parts.h"

namespace SharedClasses::platform {

namespace {

constexpr std::string_view kUserFolder = ".config";  // in the home folder
constexpr std::string_view kMachineFolder = "/etc/xdg";
constexpr std::string_view kFile = "marlow/preferences.plist";

// Never destroyed: stores may be used until the process ends.
struct SharedStores {
  std::mutex mutex;
  std::shared_ptr<SettingsStore> usual;     // null until first used
  std::shared_ptr<SettingsStore> standard;  // null for the usual one
  std::map<std::string, std::weak_ptr<SettingsStore>> byLoginName;
};

SharedStores& sharedStores() {
  static auto* const sStores = new SharedStores;
  return *sStores;
}

std::vector<std::string> machineFiles() {
  return machineSettingsFiles(environmentVariable("XDG_CONFIG_DIRS"));
}

std::shared_ptr<SettingsStore> makeUsualStore() {
  return makeFileSettingsStore({
      .file = userSettingsFile(environmentVariable("XDG_CONFIG_HOME"), homeFolderOfCurrentUser()),
      .whyNoFile = "no home folder is known; set HOME",
      .machineFiles = machineFiles(),
  });
}

}  // namespace

std::string userSettingsFile(const std::optional<std::string>& configHome, const std::string& home) {
  if (configHome && configHome->starts_with('/')) {
    return pathInFolder(*configHome, kFile);
  }
  return home.starts_with('/') ? pathInFolder(pathInFolder(home, kUserFolder), kFile) : std::string();
}

std::vector<std::string> machineSettingsFiles(const std::optional<std::string>& configFolders) {
  std::vector<std::string> files;
  std::string_view rest = configFolders && !configFolders->empty() ? *configFolders : kMachineFolder;
  while (!rest.empty()) {
    if (const std::string_view folder = takePart(rest, ':'); folder.starts_with('/')) {
      files.push_back(pathInFolder(folder, kFile));
    }
  }
  return files;
}

std::shared_ptr<SettingsStore> SettingsStore::standard() {
  SharedStores& stores = sharedStores();
  const std::lock_guard lock(stores.mutex);
  if (stores.standard != nullptr) {
    return stores.standard;
  }
  if (stores.usual == nullptr) {
    stores.usual = makeUsualStore();
  }
  return stores.usual;
}

void SettingsStore::setStandard(std::shared_ptr<SettingsStore> store) {
  // The one before is let go of without the lock: it may save, and log.
  const std::lock_guard lock(sharedStores().mutex);
  std::swap(sharedStores().standard, store);
}

std::shared_ptr<SettingsStore> SettingsStore::ofUser(const std::string& loginName) {
  const std::optional<User> user = userNamed(loginName);
  if (user && user->userID == ::geteuid()) {
    return standard();
  }
  const std::lock_guard lock(sharedStores().mutex);
  std::weak_ptr<SettingsStore>& known = sharedStores().byLoginName[loginName];
  std::shared_ptr<SettingsStore> store = known.lock();
  if (store == nullptr) {
    store = makeFileSettingsStore({
        .file = user ? userSettingsFile(std::nullopt, user->homeFolder) : std::string(),
        .whyNoFile = user ? "\"" + loginName + "\" has no home folder" : "there is no user named \"" + loginName + '"',
        .machineFiles = machineFiles(),
        .user = user,
    });
    known = store;
  }
  return store;
}

}  // namespace SharedClasses::platform
