#include "group_changes.h"

#include <optional>

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "host_changes.h"
#include "library.h"
#include "result_text.h"
#include "text.h"

namespace kvrctl {
namespace {

// The path of the group called name in the place of this one.
std::string PathBeside(const Library &library, const Group &group, const std::string &name) {
  const Group *parent = ParentOf(library, group);
  return JoinPath(parent == nullptr ? "" : parent->path, name);
}

// The name that a client's table holds, or none where the client is no more found. The library does
// not say whether a name was stored, so the hosts are discovered anew: every handle ends.
std::optional<std::string> StoredName(const Host &client) {
  const Library again;
  std::optional<std::string> name;
  ForEachGroup(again.Groups(), [&](const Group &group) {
    if (group.client == nullptr || group.client->name != client.name) return;
    if (group.client->wideName == client.wideName) name = group.name;
  });
  return name;
}

// A name beyond ASCII goes through the UTF-16 form, which alone can hold it.
std::uint32_t Rename(KVR_GROUP group, const std::string &name) {
  if (IsAscii(name)) return KVR_RenameAsgA(group, name.c_str());
  return KVR_RenameAsgW(group, WideNameOf(name).c_str());
}

// Nobody is seen to serve a parent that stands for a missing client, so no host fits there.
void RequireHanded(const std::string &doing, std::uint32_t code, const Group *parent) {
  if (code == KVR_OK) return;
  Failure failure(doing, code);
  if (code == KVR_ERR_INVALID_HANDLE && parent != nullptr && parent->offline) {
    failure.hint = TextOf(KVR_ERR_OFFLINE_GROUP).hint;
  }
  throw failure;
}

// The wording is given up to the servers, the command up to the path.
Outcome ChangeServers(const std::string &path, const std::vector<std::string> &hosts,
                      const Wording &wording, std::uint32_t (*change)(KVR_GROUP, KVR_SYSTEM)) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const std::string servers = " the servers of " + group.path;
  return ChangeHosts(
      library, hosts,
      {wording.doing + servers, wording.didSo + servers, Naming(wording.command, {path})},
      [&](KVR_SYSTEM system) { return change(group.handle, system); });
}

}  // namespace

Outcome RenameGroup(const std::string &path, const std::string &name) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const std::string doing = "Renaming group " + group.path;
  Require(doing, Rename(group.handle, name));
  if (StoredName(*group.client) != name) {
    Failure failure(doing, KVR_ERR_REMOTE_ACCESS_FAILED, group.client->name);
    failure.failedHosts = {{group.client->name, KVR_ERR_REMOTE_ACCESS_FAILED}};
    AddRetry(failure, Naming({"kvrctl", "group", "rename"}, {path, name}));
    throw failure;
  }
  const std::string newPath = PathBeside(library, group, name);
  return {{{"path", group.path}, {"name", name}, {"new_path", newPath}},
          Line("Group {} is called {} now: {}.", group.path, name, newPath),
          {},
          std::nullopt};
}

Outcome AddServers(const std::string &path, const std::vector<std::string> &hosts) {
  return ChangeServers(path, hosts, {"Adding to", "Added to", {"kvrctl", "group", "add-server"}},
                       KVR_AddServerToAsg);
}

Outcome RemoveServers(const std::string &path, const std::vector<std::string> &hosts) {
  return ChangeServers(path, hosts,
                       {"Removing from", "Removed from", {"kvrctl", "group", "remove-server"}},
                       KVR_RemoveServerFromAsg);
}

void NoteUnstoredName(Outcome &outcome, const Host &client, const std::string &name) {
  if (StoredName(client) == name) return;
  outcome.notes.push_back(fmt::format(
      "The group's name could not be stored in its client's table. To set it: `{}`.",
      CommandText(Naming({"kvrctl", "group", "rename"}, {ClientPath(client.name), name}))));
}

std::string ReducedNote(std::uint32_t granted, std::uint32_t asked) {
  const ResultText &why = TextOf(KVR_ERR_RESERVED_COUNT_REDUCED);
  return fmt::format("{} {}: {}: {} of {}. {}", why.code, why.name, why.meaning, granted, asked,
                     why.hint);
}

Outcome SetReserve(const std::string &path, std::uint32_t slots) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  std::uint32_t granted = slots;
  const std::uint32_t code = KVR_ModifyReservedIndexCount(group.handle, &granted);
  const bool reduced = code == KVR_ERR_RESERVED_COUNT_REDUCED;
  if (!reduced) Require("Changing the reserve of " + group.path, code);
  Outcome outcome = {{{"path", group.path}, {"asked", slots}, {"granted", granted}},
                     Line("Group {} has {} of {} reserved slots now.", group.path, granted, slots),
                     {},
                     std::nullopt};
  if (reduced) outcome.notes.push_back(ReducedNote(granted, slots));
  return outcome;
}

Outcome SetClient(const std::string &path, const std::string &host) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const Host &client = library.HostNamed(host);
  RequireHanded("Handing group " + group.path + " to " + client.name,
                KVR_AssignNewClient(group.handle, client.handle), ParentOf(library, group));
  const bool same = group.client == &client;
  Outcome outcome = {
      {{"path", group.path}, {"client", client.name}, {"former_client", ClientOf(group)}},
      Line("Group {} has the client {} now{}.", group.path, client.name,
           same ? "" : ", in place of " + Shown(ClientOf(group))),
      {},
      std::nullopt};
  if (same) {
    outcome.notes.emplace_back("It was the client already, so nothing was written.");
  } else {
    NoteUnstoredName(outcome, client, group.name);
  }
  return outcome;
}

}  // namespace kvrctl
