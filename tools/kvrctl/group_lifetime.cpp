#include "group_lifetime.h"

#include <optional>
#include <utility>

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "group_changes.h"
#include "host_changes.h"
#include "library.h"
#include "slot_reader.h"
#include "text.h"

namespace kvrctl {
namespace {

// Takes the last name off the path, leaving that of the parent.
std::string TakeName(GroupPath &path) {
  if (path.names.empty()) {
    throw Failure(ExitStatus::Usage, "INVALID_PATH", "The path names a client but no new group.",
                  "Write the new group's name after it, as @HOST/NAME.");
  }
  std::string name = path.names.back();
  path.names.pop_back();
  return name;
}

// The handles that a creation takes and gives.
struct Place {
  KVR_GROUP parent;  // null: the top level
  KVR_SYSTEM client;
  KVR_GROUP created = nullptr;
};

// A name beyond ASCII goes through the UTF-16 form, which alone can hold it.
std::uint32_t Create(Place &place, const std::string &name, std::uint32_t *reserve) {
  if (IsAscii(name)) {
    return KVR_CreateAsgA(place.parent, name.c_str(), place.client, reserve, &place.created);
  }
  return KVR_CreateAsgW(place.parent, WideNameOf(name).c_str(), place.client, reserve,
                        &place.created);
}

// At the top level there is no parent whose reserve could grow.
Failure CreationFailure(const std::string &doing, std::uint32_t code, bool top) {
  Failure failure(doing, code);
  if (code == KVR_ERR_NO_FREE_INDEX && top) {
    failure.hint =
        "Look with `kvrctl slots`; shrink another group's reserve with `kvrctl group "
        "set-reserve`, or delete a group.";
  }
  return failure;
}

// The path by which a group just made is found again, where another may have the same one.
std::string UniquePath(const Library &library, const std::string &path, const Host &client) {
  bool taken = false;
  ForEachGroup(library.Groups(), [&](const Group &group) { taken |= group.path == path; });
  return taken ? ClientPath(client.name) : path;
}

void AddServersTo(Outcome &outcome, KVR_GROUP group, const std::string &path,
                  const std::vector<const Host *> &servers) {
  const HostResults results =
      ChangeEach(servers, [group](KVR_SYSTEM system) { return KVR_AddServerToAsg(group, system); });
  outcome.result["done"] = results.done;
  outcome.text += Line("Added to the servers of {}: {}.", path, ShownList(results.done));
  if (results.failed.empty()) return;
  outcome.failure =
      PartialFailure("Adding to the servers of " + path, results,
                     NamingFailed(Naming({"kvrctl", "group", "add-server"}, {path}), results));
}

// A reserved slot that is in use below a group without children is held by a host that was not
// found, or by nobody since a deletion that stopped halfway. The library would give it to another.
void RequireNoLostChildren(const std::string &doing, const Library &library, const Group &group) {
  const std::uint32_t used = CountSlotsBelow(library, group).used;
  if (used == 0) return;
  throw Failure(
      ExitStatus::Refused, "LOST_CHILDREN",
      fmt::format("{} was not tried: slots of its reserve are in use by hosts that were not "
                  "found, or were left behind by a deletion ({}).",
                  doing, used),
      "Bring hosts that are missing back into reach and delete their groups first. Where none is "
      "missing, or they are gone for good, --force deletes the group, and the slots go to others.");
}

void RequireDeletable(const std::string &doing, const Group &group) {
  if (KVR_IsBackupMSC() != 0) throw Failure(doing, KVR_ERR_IS_BACKUP_MSC);
  if (group.offline) throw Failure(doing, KVR_ERR_OFFLINE_GROUP);
  if (!group.children.empty()) throw Failure(doing, KVR_ERR_HAS_CHILD_GROUPS);
}

// What a deletion leaves behind: the library cannot give slots back to a client that was not found.
std::vector<std::string> NotesOnDeletion(const Library &library, const Group &group) {
  const Group *parent = ParentOf(library, group);
  if (parent == nullptr || !parent->offline) return {};
  return {
      "The group's slots stay taken in the reserve of the client that was not found, until its "
      "own group is deleted with --force."};
}

// The failure of a deletion that the library answered with code, its servers being out before.
Failure DeletionFailure(const Library &library, const std::string &doing, std::uint32_t code,
                        bool deleted, const std::vector<std::string> &retry) {
  Failure failure(doing, code);
  for (const Host *host : library.TakeFailedHosts())
    failure.failedHosts.push_back({host->name, code});
  if (!deleted) {
    AddRetry(failure, retry);
  } else if (code == KVR_ERR_SERVERS_FAILED) {
    failure.hint =
        "The group is deleted, but the hosts listed still serve its slot: take them out with "
        "`kvrctl acg remove` and bring them back with `kvrctl acg add`.";
  } else {
    failure.hint =
        "The group is deleted, but its slots stay taken until the group above it, or at the top "
        "level the configuration, is deleted.";
  }
  return failure;
}

}  // namespace

Outcome CreateGroup(const GroupRequest &request) {
  GroupPath path = SplitPath(request.path);
  const std::string shownPath = PathText(path);
  const std::string name = TakeName(path);
  const Library library;
  const bool top = path.client.empty() && path.names.empty();
  const Host &client = library.HostNamed(request.client);
  const auto servers = library.HostsNamed(request.servers);
  Place place{top ? nullptr : library.GroupAt(path).handle, client.handle};
  std::uint32_t granted = request.reserve;
  const std::uint32_t code = Create(place, name, &granted);
  const bool reduced = code == KVR_ERR_RESERVED_COUNT_REDUCED;
  if (code != KVR_OK && !reduced) throw CreationFailure("Creating group " + shownPath, code, top);
  Outcome outcome = {{{"path", shownPath},
                      {"client", client.name},
                      {"asked", request.reserve},
                      {"granted", granted}},
                     Line("Created group {} for client {}, with {} of {} reserved slots.",
                          shownPath, client.name, granted, request.reserve),
                     {},
                     std::nullopt};
  if (reduced) outcome.notes.push_back(ReducedNote(granted, request.reserve));
  if (!servers.empty()) {
    AddServersTo(outcome, place.created, UniquePath(library, shownPath, client), servers);
  }
  NoteUnstoredName(outcome, client, name);
  return outcome;
}

Outcome DeleteGroup(const std::string &path, bool force) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const std::string doing = "Deleting group " + group.path;
  std::vector<std::string> retry = {"kvrctl", "group", "delete"};
  if (force) retry.emplace_back("--force");
  retry = Naming(std::move(retry), {path});
  RequireDeletable(doing, group);
  if (!force) RequireNoLostChildren(doing, library, group);
  const HostResults servers = ChangeEach(group.servers, [&group](KVR_SYSTEM system) {
    return KVR_RemoveServerFromAsg(group.handle, system);
  });
  std::optional<Failure> failure;
  bool deleted = false;
  if (!servers.failed.empty()) {
    failure = PartialFailure(doing, servers, retry);
  } else if (const std::uint32_t code = KVR_DeleteAsg(group.handle)) {
    // A group that is gone has no handle left to ask, but its client holds no slot any more.
    deleted = KVR_IsClient(group.client->handle) == 0;
    failure = DeletionFailure(library, doing, code, deleted, retry);
  } else {
    deleted = true;
  }
  const bool changed = deleted || !servers.done.empty();
  if (failure) failure->status = changed ? ExitStatus::Partial : StatusOf(failure->code);
  if (!changed) throw *failure;
  return {{{"path", group.path}, {"deleted", deleted}, {"done", servers.done}},
          Line("Group {} {}. Removed from its servers: {}.", group.path,
               deleted ? "is deleted" : "stays", ShownList(servers.done)),
          deleted ? NotesOnDeletion(library, group) : std::vector<std::string>{},
          failure};
}

}  // namespace kvrctl
