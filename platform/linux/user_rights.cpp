#include "platform/linux/user_rights.h"

#include <grp.h>
#include <sys/fsuid.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

#include "platform/log.h"

namespace SharedClasses::platform {

namespace {

constexpr int kMostGroups = 65536;  // that the system knows for a thread

// The C library's setgroups() changes all threads; the system's own call changes the one that makes it.
#ifdef SYS_setgroups32
constexpr long kSetGroups = SYS_setgroups32;
#else
constexpr long kSetGroups = SYS_setgroups;
#endif

bool setGroupsOfThread(const std::vector<gid_t>& groups) {
  return ::syscall(kSetGroups, groups.size(), groups.data()) == 0;
}

std::optional<std::vector<gid_t>> groupsOfThread() {
  const int count = ::getgroups(0, nullptr);
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
  if (count < 0 || ::getgroups(count, groups.data()) != count) {
    return std::nullopt;
  }
  return groups;
}

// These two calls give the number before, and nothing else tells whether they did anything. No number is -1.
uid_t fileUserOfThread() {
  return static_cast<uid_t>(::setfsuid(static_cast<uid_t>(-1)));
}
gid_t fileGroupOfThread() {
  return static_cast<gid_t>(::setfsgid(static_cast<gid_t>(-1)));
}

bool takeRights(uid_t user, gid_t group) {
  ::setfsgid(group);
  ::setfsuid(user);
  return fileUserOfThread() == user && fileGroupOfThread() == group;
}

}  // namespace

UserRights rightsOfUser(const User& user) {
  UserRights rights{user.userID, user.groupID, std::vector<gid_t>(64)};
  int count = static_cast<int>(rights.groups.size());
  while (::getgrouplist(user.loginName.c_str(), user.groupID, rights.groups.data(), &count) < 0) {
    if (count > kMostGroups) {
      rights.groups = {user.groupID};
      return rights;
    }
    count = std::max(count, static_cast<int>(rights.groups.size()) * 2);
    rights.groups.resize(static_cast<std::size_t>(count));
  }
  rights.groups.resize(static_cast<std::size_t>(count));
  return rights;
}

ActingAs::ActingAs(const std::optional<UserRights>& rights) {
  if (!rights) {
    return;
  }
  std::optional<std::vector<gid_t>> groups = groupsOfThread();
  mHasSucceeded = groups && setGroupsOfThread(rights->groups);
  if (!mHasSucceeded) {
    return;
  }
  mOwn = OwnRights{fileUserOfThread(), fileGroupOfThread(), *std::move(groups)};
  // The user last: only the administrator may take on a group.
  mHasSucceeded = takeRights(rights->userID, rights->groupID);
}

ActingAs::~ActingAs() {
  if (!mOwn) {
    return;
  }
  const bool isUserBack = takeRights(mOwn->userID, mOwn->groupID);
  const bool areGroupsBack = setGroupsOfThread(mOwn->groups);
  if (!isUserBack || !areGroupsBack) {
    log("A thread could not put down the rights of another user; it goes on with fewer rights than it had.");
  }
}

}  // namespace SharedClasses::platform
