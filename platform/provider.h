// A function that a program sets at its start for the library to ask, such as for the voices of the machine.
// For the main thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/exceptions.h"
#include "platform/log.h"

namespace SharedClasses::platform {

template <typename Answer>
class Provider {
 public:
  using Function = std::function<Answer()>;

  // `subject` names what is provided, in the log: "voices".
  explicit Provider(std::string_view subject) : mName("The provider of the " + std::string(subject)) {}
  Provider(const Provider&) = delete;
  Provider& operator=(const Provider&) = delete;
  ~Provider() = default;

  // An empty function for none, which is the start.
  void set(Function function) {
    mFunction = std::move(function);
    mAskedItself = false;
  }

  // The answer; absent where there is no function. `Answer{}` where it throws, which is logged, and where it runs
  // already, as when it asks for its own answer, which is logged once for each function. It may set another.
  [[nodiscard]] std::optional<Answer> ask() {
    if (mIsRunning) {
      if (!std::exchange(mAskedItself, true)) {
        log(mName + " was asked again while it ran.");
      }
      return Answer{};
    }
    if (!mFunction) {
      return std::nullopt;
    }
    Answer answer{};
    const Running running(mIsRunning);
    if (const std::optional<std::string> thrown = nameOfThrown([&] {
          const Function function = mFunction;  // a copy: it may set another
          answer = function();
        })) {
      log(mName + " threw " + *thrown + ".");
    }
    return answer;
  }

 private:
  // True as long as this lives, also where the thread is cancelled.
  class Running {
   public:
    explicit Running(bool& isRunning) : mIsRunning(isRunning) { mIsRunning = true; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() { mIsRunning = false; }

   private:
    bool& mIsRunning;
  };

  std::string mName;
  Function mFunction;
  bool mIsRunning = false;
  bool mAskedItself = false;  // and it was logged
};

}  // namespace SharedClasses::platform
