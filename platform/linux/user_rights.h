// The rights of another user, taken on by one thread for what it does to files.
// Files are then opened, made and refused as they would be for that user: a link that the user has planted leads
// nowhere that the user could not go. The program's other threads and all that it does besides files stay as they are.
// Afterwards the system writes no core dump of the program, since its memory may hold what the user must not read.
#pragma once

#include <sys/types.h>

#include <optional>
#include <vector>

#include "platform/users.h"

namespace SharedClasses::platform {

struct UserRights {
  uid_t userID;
  gid_t groupID;
  std::vector<gid_t> groups;  // all that the user belongs to, the one above included
};

// The rights of `user`. Asks the system's list of groups, which may be a server in the network.
[[nodiscard]] UserRights rightsOfUser(const User& user);

// The calling thread acts with `rights` on files while this lives; absent ones change nothing.
class ActingAs {
 public:
  explicit ActingAs(const std::optional<UserRights>& rights);
  ActingAs(const ActingAs&) = delete;
  ActingAs& operator=(const ActingAs&) = delete;
  ~ActingAs();

  // False where the rights could not be taken on, as without those of the administrator: then touch no file.
  [[nodiscard]] bool hasSucceeded() const { return mHasSucceeded; }

 private:
  struct OwnRights {
    uid_t userID;
    gid_t groupID;
    std::vector<gid_t> groups;
  };

  std::optional<OwnRights> mOwn;  // to be put back; absent when nothing was changed
  bool mHasSucceeded = true;
};

}  // namespace SharedClasses::platform
