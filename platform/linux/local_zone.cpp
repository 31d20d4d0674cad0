#include "platform/linux/local_zone.h"

#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <map>
#include <utility>

#include "platform/files.h"

namespace SharedClasses::platform {

namespace {

constexpr const char* kLocalTimeFile = "/etc/localtime";
constexpr const char* kZoneFolder = "/usr/share/zoneinfo";
constexpr std::string_view kZoneFolderInPaths = "/zoneinfo/";
constexpr std::size_t kLongestFile = std::size_t{1} << 20;
constexpr std::size_t kMostKnownZones = 64;
constexpr int kMostLinks = 8;

// A change is promised to be noticed within a second; the coarse clock lags by up to a hundredth.
constexpr auto kLookEvery = std::chrono::milliseconds(900);

// What changes when a file is replaced or written to: of a link, and of what it leads to.
using Traces = std::array<std::int64_t, 14>;

std::optional<Traces> tracesOfFile(const char* path) {
  struct stat link {};
  struct stat file {};
  if (::lstat(path, &link) != 0 || ::stat(path, &file) != 0) {
    return std::nullopt;
  }
  Traces traces{};
  auto* next = traces.begin();
  for (const struct stat& status : {link, file}) {
    for (const auto number :
         {static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino),
          static_cast<std::int64_t>(status.st_size), static_cast<std::int64_t>(status.st_mtim.tv_sec),
          static_cast<std::int64_t>(status.st_mtim.tv_nsec), static_cast<std::int64_t>(status.st_ctim.tv_sec),
          static_cast<std::int64_t>(status.st_ctim.tv_nsec)}) {
      *next++ = number;
    }
  }
  return traces;
}

std::string zoneNameOfPath(std::string path) {
  for (int links = 0; links <= kMostLinks; ++links) {
    const std::size_t place = path.rfind(kZoneFolderInPaths);
    if (place != std::string::npos && place + kZoneFolderInPaths.size() < path.size()) {
      return path.substr(place + kZoneFolderInPaths.size());
    }
    std::string target(PATH_MAX, '\0');
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length <= 0) {
      break;
    }
    target.resize(static_cast<std::size_t>(length));
    path = target.front() == '/' ? target : path.substr(0, path.rfind('/') + 1) + target;
  }
  return "localtime";
}

// The zones that were read, by keyOfFile() or their rule. Those that nobody holds any more are forgotten when there are
// too many.
class KnownZones {
 public:
  TimeZonePointer zone(const std::string& key, const Traces& traces) {
    const std::lock_guard lock(mMutex);
    const auto found = mZones.find(key);
    return found != mZones.end() && found->second.traces == traces ? found->second.zone : nullptr;
  }

  void add(const std::string& key, const Traces& traces, const TimeZonePointer& zone) {
    const std::lock_guard lock(mMutex);
    if (mZones.size() >= kMostKnownZones) {
      std::erase_if(mZones, [](const auto& entry) { return entry.second.zone.use_count() == 1; });
    }
    mZones[key] = {traces, zone};
  }

 private:
  struct Entry {
    Traces traces;
    TimeZonePointer zone;
  };

  std::mutex mMutex;  // guards what follows
  std::map<std::string, Entry> mZones;
};

KnownZones& knownZones() {
  static auto* const sZones = new KnownZones;  // never destroyed: threads may ask until the process ends
  return *sZones;
}

// A zone carries the name that it was asked by, so that a file has one for each.
std::string keyOfFile(const std::string& path, std::string_view name) {
  std::string key = path;
  key += '\0';
  key += name;
  return key;
}

// A name that cannot lead out of the folder of zones.
bool isZoneName(std::string_view name) {
  if (name.empty() || name.size() > NAME_MAX || name.find('\0') != std::string_view::npos) {
    return false;
  }
  for (std::string_view rest = name; !rest.empty();) {
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    const std::string_view part = rest.substr(0, slash);
    if (part.empty() || part == "." || part == "..") {
      return false;
    }
    rest.remove_prefix(std::min(slash + 1, rest.size()));
  }
  return !name.ends_with('/');
}

TimeZonePointer timeZoneInFolder(std::string_view name) {
  const auto folder = environmentVariable("TZDIR");
  const bool isUsable = folder && folder->starts_with('/');
  return timeZoneOfFile(pathInFolder(isUsable ? *folder : kZoneFolder, name), name);
}

// Rules are known by their texts, which never hold a NUL.
TimeZonePointer timeZoneOfRule(std::string_view rule) {
  const std::string text(rule);
  TimeZonePointer zone = knownZones().zone(text, Traces{});
  if (zone == nullptr) {
    zone = TimeZone::fromRule(rule);
    if (zone != nullptr) {
      knownZones().add(text, Traces{}, zone);
    }
  }
  return zone;
}

std::chrono::nanoseconds coarseTime() {
  timespec time{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace

TimeZonePointer timeZoneOfFile(const std::string& path, std::string_view name) {
  const auto traces = tracesOfFile(path.c_str());
  if (!traces) {
    return nullptr;
  }
  const std::string key = keyOfFile(path, name);
  TimeZonePointer zone = knownZones().zone(key, *traces);
  if (zone == nullptr) {
    const auto bytes = readFile(path, kLongestFile);
    zone =
        bytes ? TimeZone::fromCompiledFile(*bytes, name.empty() ? zoneNameOfPath(path) : std::string(name)) : nullptr;
    if (zone != nullptr) {
      knownZones().add(key, *traces, zone);
    }
  }
  return zone;
}

TimeZonePointer LocalZone::zone(const char* tz, std::chrono::nanoseconds now) {
  const std::lock_guard lock(mMutex);
  const bool isSame = tz == nullptr ? !mTZ : mTZ == tz;
  if (mZone == nullptr || !isSame || now - mLookedUp >= kLookEvery) {
    mZone = lookUp(tz);
    mTZ = tz == nullptr ? std::nullopt : std::optional<std::string>(tz);
    mLookedUp = now;
  }
  return mZone;
}

TimeZonePointer LocalZone::lookUp(const char* tz) const {
  TimeZonePointer zone;
  if (tz == nullptr) {
    zone = timeZoneOfFile(mFile);
  } else {
    std::string_view name = tz;
    name.remove_prefix(name.starts_with(':') ? 1 : 0);
    if (!name.starts_with('/')) {
      zone = TimeZone::named(name);
    } else if (::getauxval(AT_SECURE) == 0) {
      // A program with raised rights opens no file that its caller names.
      zone = timeZoneOfFile(std::string(name));
    }
  }
  return zone != nullptr ? zone : TimeZone::utc();
}

TimeZonePointer TimeZone::local() {
  static auto* const sLocal = new LocalZone(kLocalTimeFile);  // never destroyed: threads may ask until the process ends
  return sLocal->zone(::getenv("TZ"), coarseTime());
}

TimeZonePointer TimeZone::named(std::string_view name) {
  if (name == utc()->name()) {
    return utc();  // also on a machine without any files of zones
  }
  TimeZonePointer zone = isZoneName(name) ? timeZoneInFolder(name) : nullptr;
  return zone != nullptr ? zone : timeZoneOfRule(name);
}

}  // namespace SharedClasses::platform
