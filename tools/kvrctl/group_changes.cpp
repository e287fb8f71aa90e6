#include "group_changes.h"

#include <fmt/format.h>

#include "hints.h"
#include "host_changes.h"
#include "library.h"
#include "slot_reader.h"
#include "text.h"

namespace kvrctl {
namespace {

// The path of the group called name in the place of this one.
std::string PathBeside(const Library &library, const Group &group, const std::string &name) {
  const Group *parent = ParentOf(library, group);
  return JoinPath(parent == nullptr ? "" : parent->path, name);
}

// Nobody is seen to serve a parent that stands for a missing client, so no host fits there.
void RequireHanded(const std::string &doing, std::uint32_t code, const Group *parent) {
  if (code == KVR_OK) return;
  Failure failure(doing, code);
  if (code == KVR_ERR_INVALID_HANDLE && parent != nullptr && parent->offline) {
    failure.hint = HintOf(KVR_ERR_OFFLINE_GROUP);
  }
  throw failure;
}

// The wording is given up to the servers, the command up to the path.
Outcome ChangeServers(const std::string &path, const std::vector<std::string> &hosts,
                      const Wording &wording,
                      void (kvrapi::Group::*change)(const kvrapi::System &) const) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const std::string servers = " the servers of " + group.path;
  return ChangeHosts(
      library, hosts,
      {wording.doing + servers, wording.didSo + servers, Naming(wording.command, {path})},
      [&](const kvrapi::System &system) { (group.group.*change)(system); });
}

}  // namespace

Outcome RenameGroup(const std::string &path, const std::string &name) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const std::string doing = "Renaming group " + group.path;
  Require(doing, [&] { group.group.Rename(name); });
  if (!StoresName(*group.client, name)) {
    Library::Outdate();
    Failure failure(doing, KVR_ERR_REMOTE_ACCESS_FAILED, group.client->name);
    failure.failedHosts = {{group.client->name, KVR_ERR_REMOTE_ACCESS_FAILED}};
    AddRetry(failure, Naming({"kvrctl", "group", "rename"}, {path, name}));
    throw failure;
  }
  const std::string newPath = PathBeside(library, group, name);
  return {{{"path", group.path}, {"name", name}, {"new_path", newPath}},
          [](const Json &result, const Screen &) {
            return Line("Group {} is called {} now: {}.", Shown(result.at("path")),
                        Shown(result.at("name")), Shown(result.at("new_path")));
          }};
}

Outcome AddServers(const std::string &path, const std::vector<std::string> &hosts) {
  return ChangeServers(path, hosts, {"Adding to", "Added to", {"kvrctl", "group", "add-server"}},
                       &kvrapi::Group::AddServer);
}

Outcome RemoveServers(const std::string &path, const std::vector<std::string> &hosts) {
  return ChangeServers(path, hosts,
                       {"Removing from", "Removed from", {"kvrctl", "group", "remove-server"}},
                       &kvrapi::Group::RemoveServer);
}

void NoteUnstoredName(Outcome &outcome, const Host &client, const std::string &name) {
  if (StoresName(client, name)) return;
  Library::Outdate();
  outcome.notes.push_back(fmt::format(
      "The group's name could not be stored in its client's table. To set it: `{}`.",
      CommandText(Naming({"kvrctl", "group", "rename"}, {ClientPath(client.name), name}))));
}

std::string ReducedNote(std::uint32_t granted, std::uint32_t asked) {
  const kvrapi::CodeText &why = kvrapi::TextOf(KVR_ERR_RESERVED_COUNT_REDUCED);
  return fmt::format("{} {}: {}: {} of {}. {}", why.code, why.name, why.meaning, granted, asked,
                     HintOf(why.code));
}

Outcome SetReserve(const std::string &path, std::uint32_t slots) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const std::uint32_t granted = Require("Changing the reserve of " + group.path,
                                        [&] { return group.group.SetReserve(slots); });
  Outcome outcome = {{{"path", group.path}, {"asked", slots}, {"granted", granted}},
                     [](const Json &result, const Screen &) {
                       return Line("Group {} has {} of {} reserved slots now.",
                                   Shown(result.at("path")), Shown(result.at("granted")),
                                   Shown(result.at("asked")));
                     }};
  if (granted != slots) outcome.notes.push_back(ReducedNote(granted, slots));
  return outcome;
}

Outcome SetClient(const std::string &path, const std::string &host) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(path));
  const Host &client = library.HostNamed(host);
  RequireHanded("Handing group " + group.path + " to " + client.name,
                CodeOf([&] { group.group.SetClient(client.system); }), ParentOf(library, group));
  Outcome outcome = {
      {{"path", group.path}, {"client", client.name}, {"former_client", ClientOf(group)}},
      [](const Json &result, const Screen &) {
        const std::string now = Shown(result.at("client"));
        const std::string before = Shown(result.at("former_client"));
        return Line("Group {} has the client {} now{}.", Shown(result.at("path")), now,
                    now == before ? "" : ", in place of " + before);
      }};
  if (group.client == &client) {
    outcome.notes.emplace_back("It was the client already, so nothing was written.");
  } else {
    NoteUnstoredName(outcome, client, group.name);
  }
  return outcome;
}

}  // namespace kvrctl
