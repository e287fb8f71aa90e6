// The half of `kvrctl group` that changes a group which is there.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command.h"
#include "library.h"

namespace kvrctl {

// Each throws Failure where nothing was done; path names the group (paths.h).

Outcome RenameGroup(const std::string &path, const std::string &name);

Outcome AddServers(const std::string &path, const std::vector<std::string> &hosts);

Outcome RemoveServers(const std::string &path, const std::vector<std::string> &hosts);

// Changes the number of slots set aside for groups below.
Outcome SetReserve(const std::string &path, std::uint32_t slots);

// Hands the group, with all that hangs below it, to another client.
Outcome SetClient(const std::string &path, const std::string &host);

// Notes where the client's table does not hold this name for its group: the library does not say
// whether a name was stored.
void NoteUnstoredName(Outcome &outcome, const Host &client, const std::string &name);

// The note on a reserve that became smaller than asked.
std::string ReducedNote(std::uint32_t granted, std::uint32_t asked);

}  // namespace kvrctl
