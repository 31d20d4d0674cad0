// Settings kept in memory, in the place of the standard store while it lives.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/settings_store.h"

namespace SharedClasses::tests {

class MemoryStore : public platform::SettingsStore {
 public:
  explicit MemoryStore(platform::Value::Dictionary kept = {}) : settings(std::move(kept)) {}

  [[nodiscard]] platform::Value value(std::string_view key) const override {
    const auto found = settings.find(key);
    return found == settings.end() ? platform::Value() : found->second;
  }
  void set(std::string_view key, platform::Value value) override {
    written.emplace_back(key);
    if (value.isAbsent()) {
      settings.erase(std::string(key));
    } else {
      settings.insert_or_assign(std::string(key), std::move(value));
    }
  }
  bool synchronize() override {
    ++synchronizations;
    return true;
  }
  [[nodiscard]] platform::Value::Dictionary all() const override { return settings; }
  [[nodiscard]] std::string path() const override { return {}; }

  platform::Value::Dictionary settings;
  std::vector<std::string> written;  // the keys given to set(), in order
  int synchronizations = 0;
};

// A store of its own for one test.
class StandardStore {
 public:
  explicit StandardStore(platform::Value::Dictionary settings = {})
      : mStore(std::make_shared<MemoryStore>(std::move(settings))) {
    platform::SettingsStore::setStandard(mStore);
  }
  StandardStore(const StandardStore&) = delete;
  StandardStore& operator=(const StandardStore&) = delete;
  ~StandardStore() { platform::SettingsStore::setStandard(nullptr); }

  MemoryStore* operator->() const { return mStore.get(); }

 private:
  std::shared_ptr<MemoryStore> mStore;
};

}  // namespace SharedClasses::tests
