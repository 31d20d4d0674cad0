// Any bytes as the file of a store: a key that is set is there afterwards, for those who come later too; what the file
// held is kept, in it or beside it.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "platform/files.h"
#include "platform/linux/file_settings_store.h"
#include "platform/log.h"
#include "platform/property_list.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace SharedClasses::platform;

struct NoLog : LogSink {
  void write(std::string_view) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const SharedClasses::tests::TemporaryFolder sFolder(SharedClasses::tests::TemporaryFolder::memory());
  static const auto sLog = setLogSink(std::make_shared<NoLog>());
  const std::string file = sFolder.path() + "/preferences.plist";
  const std::string document(reinterpret_cast<const char*>(bytes), size);
  std::filesystem::remove(file + ".damaged-1");
  std::ofstream(file, std::ios::binary) << document;
  const auto value = propertyListFromXML(document);
  Value::Dictionary expected = value && value->dictionary() != nullptr ? *value->dictionary() : Value::Dictionary();
  const auto store = makeFileSettingsStore({.file = file});
  bool isRight = store->all() == expected;
  store->set("new key", "value");
  expected.insert_or_assign("new key", "value");
  isRight = isRight && store->synchronize() && store->all() == expected;
  isRight = isRight && makeFileSettingsStore({.file = file})->all() == expected;
  const bool isDamaged = !value || value->dictionary() == nullptr;
  isRight = isRight && readFile(file + ".damaged-1", size) == (isDamaged ? std::optional(document) : std::nullopt);
  if (!isRight) {
    std::abort();
  }
  return 0;
}
