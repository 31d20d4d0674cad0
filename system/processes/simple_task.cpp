#include "system/processes/simple_task.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <string_view>

#include "platform/clock.h"
#include "platform/run_loop.h"
#include "platform/text.h"

namespace SharedClasses {

namespace {

using std::chrono::nanoseconds;

constexpr nanoseconds kUnwatchedStep = std::chrono::milliseconds(5);  // between two looks at what cannot be watched
constexpr std::size_t kLongestText = std::size_t{64} << 20;           // bytes
constexpr std::size_t kLongestBeginning = 3;                          // bytes of a character that is not whole

// The time that a task has, from its launch on.
class Deadline {
 public:
  explicit Deadline(double seconds) : mEnd(platform::Clock::system().steadyTime() + platform::spanOfSeconds(seconds)) {}

  [[nodiscard]] nanoseconds left() const { return mEnd - platform::Clock::system().steadyTime(); }

  // Lets the run loop sleep and serve until `isDone`; false when the time was over first. Where `isWatched` says no,
  // the loop may sleep over it: `isDone` is then asked every few milliseconds.
  bool waitUntil(const std::function<bool()>& isWatched, const std::function<bool()>& isDone) const {
    while (!isDone()) {
      const nanoseconds span = left();
      if (span <= nanoseconds(0)) {
        return false;
      }
      platform::RunLoop::current().runOnce(isWatched() ? span : std::min(span, kUnwatchedStep));
    }
    return true;
  }

 private:
  nanoseconds mEnd;
};

// Writes the input as the child takes it, and closes it when all is written, when nobody reads, or else at its own end.
class InputWriter {
 public:
  InputWriter(platform::ChildProcess& child, const std::string& text) : mChild(child), mText(text) {
    proceed();
    if (mChild.input() >= 0) {
      mWatch = platform::RunLoop::current().watch(mChild.input(), platform::Readiness::Writable, [this] { proceed(); });
    }
  }
  InputWriter(const InputWriter&) = delete;
  InputWriter& operator=(const InputWriter&) = delete;
  ~InputWriter() { close(); }

  // Whether the run loop sees to it; if not, somebody has to call proceed() now and then.
  [[nodiscard]] bool isWatched() const { return mChild.input() < 0 || mWatch != nullptr; }

  void proceed() {
    const bool goesOn = platform::writeToPipe(mChild.input(), mText, &mWritten);
    if (!goesOn || mWritten == mText.size()) {
      close();
    }
  }

 private:
  void close() {
    mWatch.reset();
    mChild.closeInput();
  }

  platform::ChildProcess& mChild;
  const std::string& mText;
  std::size_t mWritten = 0;
  std::unique_ptr<platform::Watch> mWatch;
};

// Takes the beginning of a character off the end of `text`, where its last bytes are missing.
void dropCutCharacter(std::string& text) {
  for (std::size_t length = 1; length <= std::min(text.size(), kLongestBeginning); ++length) {
    const std::string_view end = std::string_view(text).substr(text.size() - length);
    if (const auto first = static_cast<unsigned char>(end.front()); first < 0xC2 || first > 0xF4) {
      continue;  // does not begin a character of several bytes
    }
    const platform::DecodedCharacter character = platform::decodeCharacter(end);
    if (!character.valid && character.length == length) {
      text.resize(text.size() - length);
    }
    return;
  }
}

// Reads a pipe to its end, for a text that may not be wanted; then nothing is read.
class OutputReader {
 public:
  OutputReader(int descriptor, std::optional<std::string>* text)
      : mDescriptor(descriptor), mText(text), mHasEnded(text == nullptr) {
    proceed();
    if (!mHasEnded) {
      mWatch = platform::RunLoop::current().watch(descriptor, platform::Readiness::Readable, [this] { proceed(); });
    }
  }
  OutputReader(const OutputReader&) = delete;
  OutputReader& operator=(const OutputReader&) = delete;
  // The text is what was read by then; absent where that is not UTF-8.
  ~OutputReader() {
    if (!mIsWhole) {
      dropCutCharacter(mBytes);
    }
    if (mText != nullptr) {
      *mText = platform::isValidUTF8(mBytes) ? std::optional(std::move(mBytes)) : std::nullopt;
    }
  }

  [[nodiscard]] bool isWatched() const { return mHasEnded || mWatch != nullptr; }
  [[nodiscard]] bool hasEnded() const { return mHasEnded; }

  void proceed() {
    if (!mHasEnded) {
      mIsWhole = platform::readFromPipe(mDescriptor, &mBytes) == platform::PipeEnd::Ended;
      mHasEnded = mIsWhole || mBytes.size() >= kLongestText;
    }
    if (mHasEnded) {
      mWatch.reset();
    }
  }

 private:
  int mDescriptor;
  std::optional<std::string>* mText;
  bool mHasEnded;         // nothing more is read
  bool mIsWhole = false;  // the pipe has come to its end
  std::string mBytes;
  std::unique_ptr<platform::Watch> mWatch;
};

}  // namespace

SimpleTask::SimpleTask(const SimpleTaskArguments& arguments)
    : mActualTaskObj(arguments.launchPath, arguments.arguments.value_or(std::vector<std::string>()),
                     arguments.environmentChanges) {
  const Deadline deadline(arguments.maxSecondsToWait);
  const std::string noInput;
  bool ended = false;
  {
    InputWriter writer(mActualTaskObj, arguments.inputText ? *arguments.inputText : noInput);
    // Dropped once ready: where another task is waited for within this wait, or where the child is traced and its end
    // not yet ours, it would be ready for ever.
    std::unique_ptr<platform::Watch> watch;
    watch = platform::RunLoop::current().watch(mActualTaskObj.endDescriptor(), platform::Readiness::Readable,
                                               [&watch] { watch.reset(); });
    const auto isWatched = [&] { return watch != nullptr && writer.isWatched(); };
    ended = deadline.waitUntil(isWatched, [&] {
      if (!writer.isWatched()) {
        writer.proceed();
      }
      return !mActualTaskObj.isRunning();
    });
  }
  if (!ended) {
    if (arguments.outputText != nullptr) {
      arguments.outputText->reset();
    }
    if (arguments.errorText != nullptr) {
      *arguments.errorText = "Task timed out.";
    }
    return;
  }
  // Both at once, so that nobody is held up by the pipe that would be read later.
  OutputReader output(mActualTaskObj.output(), arguments.outputText);
  OutputReader error(mActualTaskObj.error(), arguments.errorText);
  const auto areWatched = [&] { return output.isWatched() && error.isWatched(); };
  deadline.waitUntil(areWatched, [&] {
    for (OutputReader* reader : {&output, &error}) {
      if (!reader->isWatched()) {
        reader->proceed();
      }
    }
    return output.hasEnded() && error.hasEnded();
  });
}

std::unique_ptr<SimpleTask> SimpleTask::launchedTaskWithLaunchPath(const SimpleTaskArguments& arguments) {
  return std::make_unique<SimpleTask>(arguments);
}

}  // namespace SharedClasses
