// How groups begin and end on the command line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command.h"

namespace kvrctl {

struct GroupRequest {
  std::string path;  // the last name is the new group's
  std::string client;
  std::uint32_t reserve = 0;
  std::vector<std::string> servers;
};

// Creates a group and adds its servers. Throws Failure where no group was made; a server that
// failed leaves the group and the others.
Outcome CreateGroup(const GroupRequest &request);

// Takes the group's servers out one by one, and deletes the group when all are out: while one is
// not, the group stays, so that the same command can be repeated. Unless forced, refuses where
// slots below the group are in use although no group is seen there. Throws Failure where nothing
// was done, as without consent.
Outcome DeleteGroup(const std::string &path, bool force, const Consent &consent);

}  // namespace kvrctl
