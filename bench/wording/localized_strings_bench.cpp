// A text by key, beside the C library's message catalogue with the same entries in the same run.
#include <benchmark/benchmark.h>
#include <libintl.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/string_table.h"
#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"
#include "wording/localized_strings.h"

namespace SharedClasses {
namespace {

constexpr const char* kDomain = "localizable";
constexpr const char* kMissingKey = "keyThatNoTableHolds";

[[noreturn]] void giveUp(const char* why) {
  std::fprintf(stderr, "localized_strings_bench: %s\n", why);
  std::exit(1);
}

std::string catalogueText(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      result += '\\';
    }
    result += c == '\n' ? "\\n" : std::string(1, c);
  }
  return result + "\"";
}

// The default table, as both sides of the comparison hold it.
class Texts {
 public:
  Texts() {
    tests::useShippedTexts();
    std::stringstream bytes;
    bytes << std::ifstream(SOURCE_FOLDER "/resources/English.lproj/Localizable.strings").rdbuf();
    mEntries = platform::parseStrings(bytes.str()).entries;
    bindCatalogue();
    for (const platform::StringEntry& entry : mEntries) {
      if (dgettext(kDomain, entry.key.c_str()) != entry.text || Utilities::getString(entry.key) != entry.text) {
        giveUp("the catalogue or the string table does not hold what the other holds");
      }
    }
    if (mEntries.empty() || std::string(dgettext(kDomain, kMissingKey)) != kMissingKey) {
      giveUp("there is nothing to look up, or the missing key is there");
    }
  }

  // The keys one after another, round and round.
  const std::string& nextKey() {
    mNext = mNext + 1 < mEntries.size() ? mNext + 1 : 0;
    return mEntries[mNext].key;
  }

 private:
  // Without a locale other than "C" the C library never looks into a catalogue.
  void bindCatalogue() const {
    std::string source = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
    for (const platform::StringEntry& entry : mEntries) {
      source += "msgid " + catalogueText(entry.key) + "\nmsgstr " + catalogueText(entry.text) + "\n";
    }
    const std::string folder = mFolder.path() + "/en/LC_MESSAGES/";
    const std::string command = MSGFMT " -o " + folder + kDomain + ".mo " + mFolder.write("en/LC_MESSAGES/po", source);
    if (std::system(command.c_str()) != 0 || std::setlocale(LC_ALL, "C.UTF-8") == nullptr ||
        setenv("LANGUAGE", "en", 1) != 0 || bindtextdomain(kDomain, mFolder.path().c_str()) == nullptr) {
      giveUp("the message catalogue cannot be made");
    }
  }

  tests::TemporaryFolder mFolder;
  std::vector<platform::StringEntry> mEntries;
  std::size_t mNext = 0;
};

Texts& texts() {
  static Texts sTexts;
  return sTexts;
}

void BM_GetStringHit(benchmark::State& state) {
  Texts& source = texts();
  for (auto _ : state) {
    benchmark::DoNotOptimize(Utilities::getString(source.nextKey()));
  }
}
BENCHMARK(BM_GetStringHit);

void BM_ViewOfStringHit(benchmark::State& state) {
  Texts& source = texts();
  for (auto _ : state) {
    benchmark::DoNotOptimize(Utilities::viewOfString(source.nextKey()));
  }
}
BENCHMARK(BM_ViewOfStringHit);

void BM_CLibraryHit(benchmark::State& state) {
  Texts& source = texts();
  for (auto _ : state) {
    benchmark::DoNotOptimize(dgettext(kDomain, source.nextKey().c_str()));
  }
}
BENCHMARK(BM_CLibraryHit);

// Asks two tables: the one named, then the one that all share.
void BM_GetStringMiss(benchmark::State& state) {
  texts();
  for (auto _ : state) {
    benchmark::DoNotOptimize(Utilities::getString(kMissingKey));
  }
}
BENCHMARK(BM_GetStringMiss);

void BM_ViewOfStringMiss(benchmark::State& state) {
  texts();
  for (auto _ : state) {
    benchmark::DoNotOptimize(Utilities::viewOfString(kMissingKey));
  }
}
BENCHMARK(BM_ViewOfStringMiss);

void BM_CLibraryMiss(benchmark::State& state) {
  texts();
  for (auto _ : state) {
    benchmark::DoNotOptimize(dgettext(kDomain, kMissingKey));
  }
}
BENCHMARK(BM_CLibraryMiss);

}  // namespace
}  // namespace SharedClasses
