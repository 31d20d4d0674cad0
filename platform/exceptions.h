// What a callback of the host threw, caught where it was called. Safe on any thread.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace SharedClasses::platform {

// Calls `callback`. Absent when it returned; else the name of what it threw: the readable type of an exception
// ("std::runtime_error"), "an object that is no exception" for anything else. The cancellation of a thread passes
// through.
[[nodiscard]] std::optional<std::string> nameOfThrown(const std::function<void()>& callback);

}  // namespace SharedClasses::platform
