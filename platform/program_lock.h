// Which programs run, told by locks that the kernel keeps: a program holds one under its name as long as it lives, however
// it ends. Safe on any thread.
#pragma once

#include <string>

namespace SharedClasses::platform {

// Holds the lock `name` from now on until the process ends; several processes may hold one name at once. False, with a line
// in the log, where neither the user's runtime folder nor the system's takes a lock.
bool holdProgramLock(const std::string& name);

// Whether any process holds the lock `name`, stopped and hung ones included. True also where the system does not tell.
[[nodiscard]] bool isProgramLockHeld(const std::string& name);

}  // namespace SharedClasses::platform
