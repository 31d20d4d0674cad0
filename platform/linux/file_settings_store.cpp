#include "platform/linux/file_settings_store.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <utility>

#include "platform/linux/user_rights.h"
#include "platform/log.h"
#include "platform/property_list.h"
#include "platform/run_loop.h"

namespace SharedClasses::platform {

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr nanoseconds kLookAfter =
    milliseconds(90);  // less than is promised: the clock for it ticks every 10 ms at worst
constexpr nanoseconds kSaveAfter = milliseconds(500);
constexpr nanoseconds kFirstRetryAfter = milliseconds(50);
constexpr nanoseconds kLastRetryAfter = std::chrono::minutes(1);
constexpr nanoseconds kRetryWorthTelling = std::chrono::seconds(1);  // locks are mostly held for milliseconds
constexpr nanoseconds kPatience = std::chrono::seconds(2);           // with other programs that save
constexpr int kMostAttempts = 5;                                     // to replace a file that others replace meanwhile

// It ticks, but reading it takes a few nanoseconds and never calls the system.
class CoarseClock : public Clock {
 public:
  [[nodiscard]] nanoseconds steadyTime() const override {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
  }
  [[nodiscard]] Date now() const override { return system().now(); }
};

const Clock& coarseClock() {
  static const auto* const sClock = new CoarseClock;  // never destroyed, as the stores
  return *sClock;
}

// Lines for the log, written when this goes. It is made in front of the locks, so that a sink may use the store.
class Complaints {
 public:
  Complaints() = default;
  Complaints(const Complaints&) = delete;
  Complaints& operator=(const Complaints&) = delete;
  ~Complaints() {
    for (const std::string& line : mLines) {
      log(line);
    }
  }

  void add(std::string line) { mLines.push_back(std::move(line)); }

  // Adds `line` unless it is the one that was told last; an empty one lets the next be told in any case.
  void addOnce(std::string line, std::string& toldLast) {
    if (line != toldLast) {
      toldLast = line;
      if (!line.empty()) {
        add(std::move(line));
      }
    }
  }

 private:
  std::vector<std::string> mLines;
};

// What a file gives back for `value` under `key`: an absent value when no file holds the value, nothing when none holds
// the key. `*problem` then says why.
std::optional<Value> asStored(const std::string& key, Value value, std::string* problem) {
  if (!value.isAbsent()) {
    const auto document = propertyListAsXML(Value::Dictionary{{key, std::move(value)}}, problem);
    const auto pair = document ? propertyListFromXML(*document) : std::nullopt;
    if (const Value* const stored = pair ? pair->find(key) : nullptr) {
      return *stored;
    }
  }
  return propertyListAsXML(Value::Dictionary{{key, true}}, problem) ? std::optional<Value>(Value()) : std::nullopt;
}

struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

class FileSettingsStore : public SettingsStore, public std::enable_shared_from_this<FileSettingsStore> {
 public:
  explicit FileSettingsStore(const SettingsSetup& setup);
  FileSettingsStore(const FileSettingsStore&) = delete;
  FileSettingsStore& operator=(const FileSettingsStore&) = delete;
  ~FileSettingsStore() override { saveWhatIsLeft(); }

  [[nodiscard]] Value value(std::string_view key) const override;
  void set(std::string_view key, Value value) override;
  bool synchronize() override;
  [[nodiscard]] Value::Dictionary all() const override;
  [[nodiscard]] bool isReadable() const override;
  [[nodiscard]] std::string path() const override { return mFile.path(); }

  // Saves what was set, unless there is nothing or it is a forked child that does not save what its parent has set.
  void saveWhatIsLeft();

  // For the automatic save.
  bool saveWithoutWaiting(bool tellsBusy) { return save(nanoseconds(0), tellsBusy) == Outcome::Done; }
  void timerIsGone(std::thread::id thread);
  [[nodiscard]] bool isOfThisProcess() const { return mProcess == ::getpid(); }

 private:
  using Outcome = LockedFolder::Outcome;

  // What was set under a key and is not saved; an absent value takes the key out.
  struct Change {
    Value value;
    std::uint64_t number;  // of all that were ever made
  };

  // What a save is to write.
  struct Draft {
    Value::Dictionary values;
    FileVersion replaces;
    bool keepsOld;
    std::uint64_t lastChange;  // that is in it
  };

  void saveSoon();
  void forgetParent();
  Outcome save(nanoseconds patience, bool tellsBusy);
  Outcome tryToSave(steady_clock::time_point deadline, std::string& problem, Complaints& complaints);
  Outcome write(LockedFolder& folder, const Draft& draft, std::string& problem);

  // These need mMutex.
  void look(Complaints& complaints) const;
  void lookIfDue(Complaints& complaints) const;
  [[nodiscard]] Value::Dictionary ownValues() const;
  [[nodiscard]] std::optional<Draft> draft();
  void forgetChanges(std::uint64_t last);
  void rebuildVisible() const;

  const std::string mWhyNoFile;
  const std::optional<UserRights> mRights;
  const Clock& mClock;
  const SystemCalls mCalls;

  std::mutex mSaving;  // held by the one that saves, also while it waits for disks and programs; before mMutex

  mutable std::mutex mMutex;  // for all below; held while files are read, not while they are written
  mutable SettingsFile mFile;
  mutable std::vector<SettingsFile> mMachineFiles;
  mutable nanoseconds mNextLook{0};                                                    // on mClock
  mutable std::unordered_map<std::string, Value, TextHash, std::equal_to<>> mVisible;  // what value() gives
  std::map<std::string, Change, std::less<>> mChanges;
  std::uint64_t mLastChange = 0;
  bool mIsWriteOwed = false;                      // the file is right, but may not outlive a power cut
  std::set<std::thread::id> mThreads;             // whose loops have a timer that will save
  std::atomic<pid_t> mProcess = ::getpid();       // that has made the changes
  mutable std::vector<std::string> mToldOfFiles;  // what was logged last of mFile, then of each of mMachineFiles
  std::string mToldOfSaving;
};

// In the timer of a thread's loop: saves when that goes off, again and again until it has worked, and at the latest
// when the loop goes with its thread.
class AutomaticSave {
 public:
  explicit AutomaticSave(std::weak_ptr<FileSettingsStore> store) : mStore(std::move(store)) {}
  AutomaticSave(const AutomaticSave&) = delete;
  AutomaticSave& operator=(const AutomaticSave&) = delete;
  ~AutomaticSave() {
    if (const auto store = mStore.lock(); store != nullptr && store->isOfThisProcess()) {
      store->timerIsGone(mThread);
      store->saveWhatIsLeft();
    }
  }

  void run(Timer& timer) {
    const auto store = mStore.lock();
    if (store == nullptr || !store->isOfThisProcess() || store->saveWithoutWaiting(mRetryAfter > kRetryWorthTelling)) {
      timer.invalidate();
      return;
    }
    timer.setNextFiring(RunLoop::current().clock().steadyTime() + mRetryAfter);
    mRetryAfter = std::min(mRetryAfter * 2, kLastRetryAfter);
  }

 private:
  const std::weak_ptr<FileSettingsStore> mStore;
  const std::thread::id mThread = std::this_thread::get_id();
  nanoseconds mRetryAfter = kFirstRetryAfter;
};

// All stores, for the end of the process. Never destroyed.
struct AllStores {
  std::mutex mutex;
  std::vector<std::weak_ptr<FileSettingsStore>> stores;
};

// These two are asked without a lock, which a fork may have left locked.
std::atomic<pid_t> sLastToSet = 0;  // the process that set something last
std::atomic<bool> sIsEnding = false;

AllStores& allStores();

void saveAllAtExit() {
  sIsEnding = true;
  if (sLastToSet != ::getpid()) {
    return;
  }
  std::vector<std::shared_ptr<FileSettingsStore>> stores;
  {
    const std::lock_guard lock(allStores().mutex);
    for (const auto& store : allStores().stores) {
      stores.push_back(store.lock());
    }
  }
  for (const auto& store : stores) {
    if (store != nullptr) {
      store->saveWhatIsLeft();
    }
  }
}

AllStores& allStores() {
  static auto* const sStores = [] {
    auto* const stores = new AllStores;
    std::atexit(saveAllAtExit);  // NOLINT(cert-err33-c): without it the loops still save
    return stores;
  }();
  return *sStores;
}

FileSettingsStore::FileSettingsStore(const SettingsSetup& setup)
    : mWhyNoFile(setup.whyNoFile),
      mRights(setup.user ? std::optional(rightsOfUser(*setup.user)) : std::nullopt),
      mClock(setup.clock != nullptr ? *setup.clock : coarseClock()),
      mCalls(setup.probe),
      mFile(setup.file),
      mMachineFiles(setup.machineFiles.begin(), setup.machineFiles.end()),
      mToldOfFiles(1 + setup.machineFiles.size()) {}

Value FileSettingsStore::value(std::string_view key) const {
  Complaints complaints;
  const std::lock_guard lock(mMutex);
  lookIfDue(complaints);
  const auto found = mVisible.find(key);
  return found == mVisible.end() ? Value() : found->second;
}

Value::Dictionary FileSettingsStore::all() const {
  Complaints complaints;
  const std::lock_guard lock(mMutex);
  lookIfDue(complaints);
  return {mVisible.begin(), mVisible.end()};
}

bool FileSettingsStore::isReadable() const {
  Complaints complaints;
  const std::lock_guard lock(mMutex);
  lookIfDue(complaints);
  const auto isRead = [](const SettingsFile& file) { return file.problem().empty(); };
  return isRead(mFile) && std::ranges::all_of(mMachineFiles, isRead);
}

void FileSettingsStore::set(std::string_view key, Value value) {
  forgetParent();
  sLastToSet = ::getpid();
  const std::string ownKey(key);
  std::string problem;
  const std::optional<Value> stored = asStored(ownKey, std::move(value), &problem);
  {
    Complaints complaints;
    if (!problem.empty()) {
      complaints.add(stored ? "A setting is taken out, since no file can hold what was set: " + problem + '.'
                            : "A setting is left alone, since no file can hold its name: " + problem + '.');
    }
    if (!stored) {
      return;
    }
    const std::lock_guard lock(mMutex);
    lookIfDue(complaints);
    mChanges.insert_or_assign(ownKey, Change{*stored, ++mLastChange});
    if (stored->isAbsent()) {
      rebuildVisible();
    } else {
      mVisible.insert_or_assign(ownKey, *stored);
    }
  }
  saveSoon();
}

bool FileSettingsStore::synchronize() {
  forgetParent();
  return save(kPatience, true) == Outcome::Done;
}

void FileSettingsStore::saveWhatIsLeft() {
  if (!isOfThisProcess()) {
    return;
  }
  {
    const std::lock_guard lock(mMutex);
    if (mChanges.empty()) {
      return;
    }
  }
  save(kPatience, true);
}

void FileSettingsStore::saveSoon() {
  if (mFile.path().empty() || sIsEnding) {
    saveWhatIsLeft();  // to say that it cannot be done; or because no loop will run any more
    return;
  }
  {
    const std::lock_guard lock(mMutex);
    if (!mThreads.insert(std::this_thread::get_id()).second) {
      return;
    }
  }
  const auto save = std::make_shared<AutomaticSave>(weak_from_this());
  RunLoop::current().addTimer(
      kLastRetryAfter, [save](Timer& timer) { save->run(timer); }, kSaveAfter);
}

void FileSettingsStore::timerIsGone(std::thread::id thread) {
  const std::lock_guard lock(mMutex);
  mThreads.erase(thread);
}

// What the parent has set before a fork is the parent's to save.
void FileSettingsStore::forgetParent() {
  if (isOfThisProcess()) {
    return;
  }
  const std::lock_guard lock(mMutex);
  mChanges.clear();
  mThreads.clear();
  mIsWriteOwed = false;
  rebuildVisible();
  mProcess = ::getpid();
}

FileSettingsStore::Outcome FileSettingsStore::save(nanoseconds patience, bool tellsBusy) {
  const steady_clock::time_point deadline = steady_clock::now() + patience;
  Complaints complaints;
  // In steps, as for the other programs: the thread sanitizer of g++ 12 knows no lock that is waited for with a
  // deadline.
  std::unique_lock saving(mSaving, std::try_to_lock);
  while (!saving.owns_lock()) {
    if (steady_clock::now() >= deadline) {
      return Outcome::Busy;
    }
    std::this_thread::sleep_for(kLockStep);
    saving.try_lock();
  }
  Outcome outcome = Outcome::Failed;
  std::string problem;
  if (mFile.path().empty()) {
    problem = mWhyNoFile;
  } else if (const ActingAs rights(mRights); !rights.hasSucceeded()) {
    problem = "only the administrator may use the files of another user";
  } else {
    outcome = Outcome::Busy;
    for (int attempt = 0; attempt < kMostAttempts && outcome == Outcome::Busy; ++attempt) {
      outcome = tryToSave(deadline, problem, complaints);
    }
  }
  if (outcome == Outcome::Busy && tellsBusy) {
    problem = "another program is saving and does not come to an end";
  }
  const std::lock_guard lock(mMutex);
  if (outcome == Outcome::Done) {
    mToldOfSaving.clear();
  } else if (!problem.empty()) {
    const std::string place = mFile.path().empty() ? "" : " in \"" + mFile.path() + '"';
    complaints.addOnce("Settings are kept in memory and cannot be saved" + place + ": " + problem + '.', mToldOfSaving);
  }
  return outcome;
}

FileSettingsStore::Outcome FileSettingsStore::tryToSave(steady_clock::time_point deadline, std::string& problem,
                                                        Complaints& complaints) {
  LockedFolder folder;
  std::optional<Draft> toWrite;
  // Without a change there is nothing to lock; with one the file is looked at again under the lock.
  for (const bool isLocked : {false, true}) {
    if (isLocked) {
      if (const Outcome outcome = folder.lock(mFile.path(), deadline, mCalls); outcome != Outcome::Done) {
        problem = folder.problem();
        return outcome;
      }
    }
    const std::lock_guard lock(mMutex);
    look(complaints);
    if (mFile.state() == SettingsFile::State::Unreadable) {
      problem = "it cannot be read and may hold others: " + mFile.problem();
      return Outcome::Failed;
    }
    toWrite = draft();
    if (!toWrite) {
      forgetChanges(mLastChange);
      return Outcome::Done;
    }
  }
  const Outcome outcome = write(folder, *toWrite, problem);
  if (!folder.keptPath().empty()) {
    complaints.add("Damaged settings are kept as \"" + folder.keptPath() + "\"; mend them there by hand.");
  }
  return outcome;
}

FileSettingsStore::Outcome FileSettingsStore::write(LockedFolder& folder, const Draft& draft, std::string& problem) {
  std::optional<std::string> document = propertyListAsXML(draft.values, &problem);
  if (!document) {
    return Outcome::Failed;
  }
  FileVersion version;
  const Outcome outcome = folder.replace(*document, draft.replaces, draft.keepsOld, &version, mCalls);
  problem = folder.problem();
  const std::lock_guard lock(mMutex);
  mIsWriteOwed = mIsWriteOwed || outcome == Outcome::Unsynced;
  if (outcome == Outcome::Done) {
    mIsWriteOwed = false;
    forgetChanges(draft.lastChange);
    mFile.adopt(version, *std::move(document), draft.values);
  }
  return outcome;
}

void FileSettingsStore::look(Complaints& complaints) const {
  mNextLook = mClock.steadyTime() + kLookAfter;
  bool isChanged = mFile.refresh(mCalls);
  const auto tell = [&complaints](const SettingsFile& file, std::string& toldLast) {
    const bool isDamaged = file.state() == SettingsFile::State::Damaged;
    complaints.addOnce(file.problem().empty() ? ""
                                              : "Settings in \"" + file.path() + "\" cannot be read: " +
                                                    file.problem() + (isDamaged ? ". Mend the file by hand." : "."),
                       toldLast);
  };
  tell(mFile, mToldOfFiles[0]);
  for (std::size_t i = 0; i < mMachineFiles.size(); ++i) {
    isChanged = mMachineFiles[i].refresh(mCalls) || isChanged;
    tell(mMachineFiles[i], mToldOfFiles[1 + i]);
  }
  if (isChanged) {
    rebuildVisible();
  }
}

void FileSettingsStore::lookIfDue(Complaints& complaints) const {
  const nanoseconds now = mClock.steadyTime();
  if (now < mNextLook) {
    return;
  }
  mNextLook = now + kLookAfter;
  if (const ActingAs rights(mRights); rights.hasSucceeded()) {
    look(complaints);
  }
}

Value::Dictionary FileSettingsStore::ownValues() const {
  Value::Dictionary values = mFile.values();
  for (const auto& [key, change] : mChanges) {
    if (change.value.isAbsent()) {
      values.erase(key);
    } else {
      values.insert_or_assign(key, change.value);
    }
  }
  return values;
}

// Nothing when the file is as it should be.
std::optional<FileSettingsStore::Draft> FileSettingsStore::draft() {
  Draft draft{ownValues(), mFile.version(), mFile.state() == SettingsFile::State::Damaged, mLastChange};
  const bool isNeeded = draft.keepsOld || mIsWriteOwed || draft.values != mFile.values();
  return isNeeded ? std::optional(std::move(draft)) : std::nullopt;
}

void FileSettingsStore::forgetChanges(std::uint64_t last) {
  std::erase_if(mChanges, [last](const auto& entry) { return entry.second.number <= last; });
}

void FileSettingsStore::rebuildVisible() const {
  const Value::Dictionary own = ownValues();
  mVisible.clear();
  mVisible.insert(own.begin(), own.end());
  for (const SettingsFile& file : mMachineFiles) {
    mVisible.insert(file.values().begin(), file.values().end());  // leaves alone what is there
  }
}

}  // namespace

std::shared_ptr<SettingsStore> makeFileSettingsStore(const SettingsSetup& setup) {
  const auto store = std::make_shared<FileSettingsStore>(setup);
  const std::lock_guard lock(allStores().mutex);
  std::erase_if(allStores().stores, [](const auto& known) { return known.expired(); });
  allStores().stores.push_back(store);
  return store;
}

}  // namespace SharedClasses::platform
