#include "platform/run_loop.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <utility>

#include "platform/exceptions.h"
#include "platform/linux/file_descriptor.h"
#include "platform/linux/time_spans.h"
#include "platform/log.h"
#include "platform/timer_heap.h"

namespace SharedClasses::platform {

namespace {

using std::chrono::nanoseconds;

constexpr nanoseconds kNothing{0};
constexpr nanoseconds kBlindStep = std::chrono::milliseconds(5);  // between two looks where nothing can be waited for
constexpr int kMostInOneAnother = 100;                            // runOnce; deeper ones leave the stack alone
constexpr nanoseconds kWaitWithoutServing = std::chrono::milliseconds(10);
constexpr nanoseconds kLongestWait = std::chrono::hours(24);  // of one call of the system; runOnce then asks again

// What epoll says of the loop's own two descriptors; watches count from kFirstWatch.
constexpr std::uint64_t kTimerEvent = 0;
constexpr std::uint64_t kCallEvent = 1;
constexpr std::uint64_t kFirstWatch = 2;

// False, after a line in the log, when `callback` threw.
bool runGuarded(const char* what, const std::function<void()>& callback) {
  const std::optional<std::string> thrown = nameOfThrown(callback);
  if (thrown) {
    log(std::string(what) + " threw " + *thrown + ".");
  }
  return !thrown;
}

nanoseconds realTime() {
  return Clock::system().steadyTime();
}

}  // namespace

class RunLoop::System {
 public:
  using Pump = std::function<void(nanoseconds)>;

  explicit System(const Clock& clock)
      : mClock(clock),
        mTimers(clock, [this] { armTimer(); }),
        mEpoll(::epoll_create1(EPOLL_CLOEXEC)),
        mTimer(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)),
        mCallsWaiting(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!control(EPOLL_CTL_ADD, mTimer.get(), EPOLLIN, kTimerEvent) ||
        !control(EPOLL_CTL_ADD, mCallsWaiting.get(), EPOLLIN, kCallEvent)) {
      mEpoll.reset();
    }
  }

  [[nodiscard]] const Clock& clock() const { return mClock; }
  [[nodiscard]] TimerHeap& timers() { return mTimers; }
  [[nodiscard]] int descriptor() const { return mEpoll.get(); }
  void setPump(Pump pump) { mPump = pump ? std::make_shared<const Pump>(std::move(pump)) : nullptr; }

  [[nodiscard]] std::optional<nanoseconds> untilNextTimer() const {
    const Timer* const next = mTimers.next();
    return next == nullptr ? std::nullopt : std::optional(std::max(next->nextFiring() - mClock.steadyTime(), kNothing));
  }

  // The number of the new watch; 0 when there is none.
  std::uint64_t addWatch(int descriptor, std::uint32_t events, std::function<void()> callback) {
    auto source = std::make_shared<Source>();
    source->descriptor = descriptor;
    source->events = events | EPOLLONESHOT;
    source->callback = std::move(callback);
    const std::uint64_t number = mNextWatch++;
    if (!control(EPOLL_CTL_ADD, descriptor, source->events, number)) {
      if (errno != EEXIST) {
        return 0;
      }
      // Watched already: a second number for the same file is watched beside the first.
      source->duplicate = FileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
      source->descriptor = source->duplicate.get();
      if (!control(EPOLL_CTL_ADD, source->descriptor, source->events, number)) {
        return 0;
      }
    }
    mSources.emplace(number, std::move(source));
    return number;
  }

  void removeWatch(std::uint64_t number) {
    const auto found = mSources.find(number);
    if (found != mSources.end()) {
      // Let go of at the end: what its callback holds may drop other watches.
      const std::shared_ptr<Source> source = std::move(found->second);
      mSources.erase(found);
      control(EPOLL_CTL_DEL, source->descriptor, 0, number);
    }
  }

  void call(std::function<void()> function) {
    const std::lock_guard lock(mMutex);
    mCalls.push_back(std::move(function));
    signalCalls();
  }

  void wakeUp() {
    const std::lock_guard lock(mMutex);
    mWakeUpWanted = true;
    signalCalls();
  }

  bool runOnce(nanoseconds longest) {
    const Nesting nesting(mRunning);
    if (mRunning > kMostInOneAnother) {
      std::this_thread::sleep_for(std::clamp(longest, kNothing, kWaitWithoutServing));
      return false;
    }
    const nanoseconds end = realTime() + std::clamp(longest, kNothing, nanoseconds(std::chrono::years(100)));
    while (true) {
      switch (serve()) {
        case Served::Something:
          ++mServings;
          return true;
        case Served::WakeUp:
          ++mWakeUps;
          return false;
        case Served::Nothing:
          break;
      }
      const nanoseconds left = longest <= kNothing ? kNothing : end - realTime();
      if (left <= kNothing) {
        return false;
      }
      const std::uint64_t servings = mServings;
      const std::uint64_t wakeUps = mWakeUps;
      wait(std::min(left, kLongestWait));
      // A runOnce inside of the pump may have taken what this one waited for.
      if (mServings != servings || mWakeUps != wakeUps) {
        return mServings != servings;
      }
    }
  }

 private:
  class Nesting {
   public:
    explicit Nesting(int& running) : mRunning(running) { ++mRunning; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    ~Nesting() { --mRunning; }

   private:
    int& mRunning;
  };

  enum class Served {
    Nothing,
    Something,
    WakeUp
  };

  // A watched descriptor. It is out of the epoll set's care while its callback runs.
  struct Source {
    int descriptor = -1;
    FileDescriptor duplicate;  // what `descriptor` is, where that had to be a second number
    std::uint32_t events = 0;
    std::function<void()> callback;
  };

  bool control(int operation, int descriptor, std::uint32_t events, std::uint64_t number) {
    epoll_event event{};
    event.events = events;
    event.data.u64 = number;
    return ::epoll_ctl(mEpoll.get(), operation, descriptor, &event) == 0;
  }

  // Sets the system's timer for the next one to fire, unless it goes off early enough already: a timer that goes off
  // early is set again then, which costs less than setting it at every firing.
  void armTimer() {
    const Timer* const next = mTimers.next();
    if (next == nullptr || (mArmed && *mArmed <= next->nextFiring())) {
      return;
    }
    setTimer(next->nextFiring());
  }

  void setTimer(std::optional<nanoseconds> deadline) {
    mArmed = deadline;
    itimerspec setting{};
    // A clock that is not the system's does not move the system's timer: it goes off at once when something is due.
    const bool isReal = &mClock == &Clock::system();
    if (deadline && (isReal || *deadline <= mClock.steadyTime())) {
      setting.it_value = timespecOf(isReal ? std::max(*deadline, nanoseconds(1)) : nanoseconds(1));
    }
    ::timerfd_settime(mTimer.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
  }

  Served serve() {
    mIsTimersTurn = !mIsTimersTurn;
    if (mIsTimersTurn && mTimers.fireIfDue()) {
      return Served::Something;
    }
    // Without an epoll set there are no watches.
    const Served served = mEpoll.isOpen() ? serveReady() : serveCall();
    return served == Served::Nothing && mTimers.fireIfDue() ? Served::Something : served;
  }

  Served serveReady() {
    if (&mClock != &Clock::system()) {
      setTimer(mTimers.next() == nullptr ? std::nullopt : std::optional(mTimers.next()->nextFiring()));
    }
    epoll_event event{};
    while (::epoll_wait(mEpoll.get(), &event, 1, 0) == 1) {
      const Served served = serveEvent(event.data.u64);
      if (served != Served::Nothing) {
        return served;
      }
    }
    return Served::Nothing;
  }

  Served serveEvent(std::uint64_t number) {
    switch (number) {
      case kTimerEvent:
        return serveTimer();
      case kCallEvent:
        return serveCall();
      default:
        return serveWatch(number);
    }
  }

  Served serveTimer() {
    if (mTimers.fireIfDue()) {
      return Served::Something;
    }
    setTimer(mTimers.next() == nullptr ? std::nullopt : std::optional(mTimers.next()->nextFiring()));
    return Served::Nothing;
  }

  Served serveCall() {
    std::function<void()> function;
    bool wakeUp = false;
    {
      const std::lock_guard lock(mMutex);
      wakeUp = std::exchange(mWakeUpWanted, false);
      if (!mCalls.empty()) {
        function = std::move(mCalls.front());
        mCalls.pop_front();
      }
      if (mCalls.empty()) {
        std::uint64_t ignored = 0;
        [[maybe_unused]] const auto count = ::read(mCallsWaiting.get(), &ignored, sizeof ignored);
      }
    }
    if (!function) {
      return wakeUp ? Served::WakeUp : Served::Nothing;
    }
    runGuarded("A function called on a run loop", function);
    return Served::Something;
  }

  Served serveWatch(std::uint64_t number) {
    const auto found = mSources.find(number);
    if (found == mSources.end()) {
      return Served::Nothing;
    }
    // The callback may drop its own watch.
    const std::shared_ptr<Source> source = found->second;
    runGuarded("The callback of a watched descriptor", source->callback);
    if (mSources.contains(number)) {
      control(EPOLL_CTL_MOD, source->descriptor, source->events, number);
    }
    return Served::Something;
  }

  void wait(nanoseconds longest) {
    if (!mEpoll.isOpen()) {
      longest = std::min({longest, kBlindStep, untilNextTimer().value_or(kBlindStep)});
    }
    if (const auto pump = mPump) {  // kept: it may set another
      if (!runGuarded("The pump of a run loop", [&] { (*pump)(longest); }) && mPump == pump) {
        mPump = nullptr;
      }
      return;
    }
    pollfd ready{mEpoll.get(), POLLIN, 0};  // passed over where there is none
    const timespec span = timespecOf(longest);
    if (::ppoll(&ready, 1, &span, nullptr) < 0 && errno != EINTR) {
      std::this_thread::sleep_for(std::min(longest, kBlindStep));
    }
  }

  void signalCalls() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto count = ::write(mCallsWaiting.get(), &one, sizeof one);
  }

  const Clock& mClock;
  TimerHeap mTimers;
  std::optional<nanoseconds> mArmed;  // what mTimer is set to, on mClock
  FileDescriptor mEpoll;              // none where the system had no more descriptors
  FileDescriptor mTimer;
  FileDescriptor mCallsWaiting;  // readable while mCalls holds one or a wake-up is wanted
  std::unordered_map<std::uint64_t, std::shared_ptr<Source>> mSources;
  std::uint64_t mNextWatch = kFirstWatch;
  std::shared_ptr<const Pump> mPump;  // null for none
  std::uint64_t mServings = 0;        // how often a runOnce served something
  std::uint64_t mWakeUps = 0;         // how often one was ended by a wake-up
  bool mIsTimersTurn = false;         // at the look before
  int mRunning = 0;                   // how many runOnce stand in one another

  std::mutex mMutex;  // guards the two below
  std::deque<std::function<void()>> mCalls;
  bool mWakeUpWanted = false;
};

namespace {

// Takes its descriptor out of the loop, if that still is.
class LoopWatch : public Watch {
 public:
  explicit LoopWatch(std::function<void()> remove) : mRemove(std::move(remove)) {}
  ~LoopWatch() override { mRemove(); }

 private:
  std::function<void()> mRemove;
};

}  // namespace

RunLoop::RunLoop(const Clock& clock) : mSystem(std::make_shared<System>(clock)) {}

RunLoop::~RunLoop() = default;

RunLoop& RunLoop::current() {
  thread_local bool sIsOver = false;
  struct OfThread {
    RunLoop loop{Clock::current()};
    ~OfThread() { sIsOver = true; }
  };
  if (sIsOver) {
    thread_local auto* const sLate = new RunLoop(Clock::current());
    return *sLate;
  }
  thread_local OfThread sOwn;
  return sOwn.loop;
}

std::shared_ptr<Timer> RunLoop::addTimer(nanoseconds interval, Timer::Callback callback,
                                         std::optional<nanoseconds> firstAfter) {
  const nanoseconds first = firstAfter ? std::clamp(*firstAfter, kNothing, kLongestTimerInterval)
                                       : std::clamp(interval, kShortestTimerInterval, kLongestTimerInterval);
  return mSystem->timers().add(timeAfter(clock().steadyTime(), first), interval, std::move(callback));
}

std::unique_ptr<Watch> RunLoop::watch(int descriptor, Readiness readiness, std::function<void()> callback) {
  const std::uint32_t events = readiness == Readiness::Readable ? EPOLLIN : EPOLLOUT;
  const std::uint64_t number = mSystem->addWatch(descriptor, events, std::move(callback));
  if (number == 0) {
    return nullptr;
  }
  return std::make_unique<LoopWatch>([system = std::weak_ptr<System>(mSystem), number] {
    if (const auto living = system.lock()) {
      living->removeWatch(number);
    }
  });
}

void RunLoop::call(std::function<void()> function) {
  mSystem->call(std::move(function));
}

void RunLoop::wakeUp() {
  mSystem->wakeUp();
}

bool RunLoop::runOnce(nanoseconds longest) {
  return mSystem->runOnce(longest);
}

int RunLoop::descriptor() const {
  return mSystem->descriptor();
}

std::optional<nanoseconds> RunLoop::untilNextTimer() const {
  return mSystem->untilNextTimer();
}

void RunLoop::setPump(std::function<void(nanoseconds)> pump) {
  mSystem->setPump(std::move(pump));
}

const Clock& RunLoop::clock() const {
  return mSystem->clock();
}

}  // namespace SharedClasses::platform
