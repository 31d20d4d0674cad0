// Which programs run, told by locks that the kernel keeps: a program holds one under its name as long as it lives,
// however it ends; a fork of it that runs no other program holds it on.
// The locks lie in the user's runtime folder and in /run/lock. Where the latter is not open to all, programs of other
// users are not seen. Safe on any thread.
#pragma once

#include <string>

namespace SharedClasses::platform {

// Holds the lock `name` from now on until the process ends; several processes may hold one name at once. False where
// neither folder takes a lock; a line in the log also where only one of them does.
bool holdProgramLock(const std::string& name);

// Whether any process holds the lock `name`, stopped and hung ones included. True also where the system does not tell.
[[nodiscard]] bool isProgramLockHeld(const std::string& name);

}  // namespace SharedClasses::platform
