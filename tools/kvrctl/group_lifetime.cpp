#include "group_lifetime.h"

#include <utility>

#include <fmt/format.h>

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

// Makes the group called name at the path of its parent; doing is as for Failure.
kvrapi::CreatedGroup Create(const Library &library, const GroupPath &parent,
                            const std::string &name, const Host &client, std::uint32_t reserve,
                            const std::string &doing) {
  const bool top = parent.client.empty() && parent.names.empty();
  const Group *above = top ? nullptr : &library.GroupAt(parent);
  try {
    return top ? library.Session().CreateGroup(name, client.system, reserve)
               : above->group.CreateGroup(name, client.system, reserve);
  } catch (const kvrapi::Error &error) {
    throw CreationFailure(doing, error.Code(), top);
  }
}

// The path by which a group just made is found again, where another may have the same one.
std::string UniquePath(const Library &library, const std::string &path, const Host &client) {
  bool taken = false;
  ForEachGroup(library.Groups(), [&](const Group &group) { taken |= group.path == path; });
  return taken ? ClientPath(client.name) : path;
}

void AddServersTo(Outcome &outcome, const kvrapi::Group &group, const std::string &path,
                  const std::vector<const Host *> &servers) {
  const std::string doing = "Adding to the servers of " + path;
  const HostResults results = ChangeEach(
      doing, servers, [&group](const kvrapi::System &system) { group.AddServer(system); });
  outcome.result["done"] = results.done;
  if (results.failed.empty()) return;
  outcome.failure = PartialFailure(
      doing, results, NamingFailed(Naming({"kvrctl", "group", "add-server"}, {path}), results));
}

std::string DrawCreated(const Json &result, const Screen &) {
  const std::string path = Shown(result.at("path"));
  std::string text =
      Line("Created group {} for client {}, with {} of {} reserved slots.", path,
           Shown(result.at("client")), Shown(result.at("granted")), Shown(result.at("asked")));
  if (!result.contains("done")) return text;
  return text + Line("Added to the servers of {}: {}.", path, ShownList(result.at("done")));
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

void RequireDeletable(const std::string &doing, const Library &library, const Group &group) {
  if (library.Session().IsBackupMsc()) throw Failure(doing, KVR_ERR_IS_BACKUP_MSC);
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

// The failure of a deletion that the library refused, its servers being out before.
Failure DeletionFailure(const std::string &doing, const kvrapi::Error &error, bool deleted,
                        const std::vector<std::string> &retry) {
  Failure failure(doing, error.Code());
  for (const kvrapi::FailedHost &failed : error.FailedHosts())
    failure.failedHosts.push_back({failed.name, error.Code()});
  if (!deleted) {
    AddRetry(failure, retry);
  } else if (error.Code() == KVR_ERR_SERVERS_FAILED) {
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

std::string DrawDeleted(const Json &result, const Screen &) {
  return Line("Group {} {}. Removed from its servers: {}.", Shown(result.at("path")),
              result.at("deleted") ? "is deleted" : "stays", ShownList(result.at("done")));
}

}  // namespace

Outcome CreateGroup(const GroupRequest &request) {
  GroupPath path = SplitPath(request.path);
  const std::string shownPath = PathText(path);
  const std::string name = TakeName(path);
  const Library library;
  const Host &client = library.HostNamed(request.client);
  const auto servers = library.HostsNamed(request.servers);
  const kvrapi::CreatedGroup made =
      Create(library, path, name, client, request.reserve, "Creating group " + shownPath);
  Outcome outcome = {{{"path", shownPath},
                      {"client", client.name},
                      {"asked", request.reserve},
                      {"granted", made.reserved}},
                     DrawCreated};
  if (made.reserved != request.reserve) {
    outcome.notes.push_back(ReducedNote(made.reserved, request.reserve));
  }
  if (!servers.empty()) {
    AddServersTo(outcome, made.group, UniquePath(library, shownPath, client), servers);
  }
  NoteUnstoredName(outcome, client, name);
  return outcome;
}

Outcome DeleteGroup(const std::string &path, bool force, const Consent &consent) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const std::string doing = "Deleting group " + group.path;
  std::vector<std::string> retry = {"kvrctl", "group", "delete"};
  if (force) retry.emplace_back("--force");
  if (consent.yes) retry.emplace_back("--yes");
  retry = Naming(std::move(retry), {path});
  RequireDeletable(doing, library, group);
  if (!force) RequireNoLostChildren(doing, library, group);
  consent.Require(fmt::format("Group {} would be deleted: its client {} could reach none of its "
                              "servers any more ({}).",
                              group.path, group.client->name, ShownList(NamesOf(group.servers))),
                  "delete");
  const HostResults servers =
      ChangeEach(doing, group.servers,
                 [&group](const kvrapi::System &system) { group.group.RemoveServer(system); });
  Outcome outcome{Json()};
  bool deleted = false;
  if (!servers.failed.empty()) {
    outcome.failure = PartialFailure(doing, servers, retry);
  } else {
    try {
      group.group.Delete();
      deleted = true;
    } catch (const kvrapi::Error &error) {
      deleted = group.group.IsStale();
      outcome.failure = DeletionFailure(doing, error, deleted, retry);
    }
  }
  const bool changed = deleted || !servers.done.empty();
  if (outcome.failure) {
    outcome.failure->status = changed ? ExitStatus::Partial : StatusOf(outcome.failure->code);
  }
  if (!changed) throw Failure(*outcome.failure);
  outcome.result = {{"path", group.path}, {"deleted", deleted}, {"done", servers.done}};
  outcome.draw = DrawDeleted;
  if (deleted) outcome.notes = NotesOnDeletion(library, group);
  return outcome;
}

}  // namespace kvrctl
