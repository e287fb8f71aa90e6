#include "library.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <fmt/format.h>

#include "fabric/platform_files.h"
#include "failure.h"
#include "no_network.h"
#include "paths.h"
#include "text.h"

namespace kvrctl {
namespace {

constexpr std::uint32_t kNameSize = 32;  // the longest name; the exports end only shorter ones

// The name that a pair of exports gives, whatever its result says of a group that is offline.
template <class Character, class Handle>
std::basic_string<Character> ReadName(std::uint32_t (*read)(Handle, Character *, std::uint32_t),
                                      Handle handle) {
  std::array<Character, kNameSize + 1> buffer{};
  read(handle, buffer.data(), kNameSize);
  return buffer.data();
}

template <class Handle>
std::string ReadWideName(std::uint32_t (*read)(Handle, KVR_WCHAR *, std::uint32_t), Handle handle) {
  const auto name = ReadName<KVR_WCHAR>(read, handle);
  return Utf8Of(std::u16string(name.begin(), name.end()));
}

// The handles that a listing export gives, room being made for count of them.
template <class Handle, class List>
std::vector<Handle> ReadHandles(const char *what, std::uint32_t count, const List &list) {
  std::vector<Handle> handles(count);
  Require(what, list(handles.data(), &count));
  handles.resize(count);
  return handles;
}

std::vector<Host> ReadHosts(const std::vector<KVR_SYSTEM> &handles) {
  std::vector<Host> hosts;
  for (KVR_SYSTEM handle : handles) {
    Host host;
    host.handle = handle;
    host.wideName = ReadWideName(KVR_GetSystemNameW, handle);
    host.name = Utf8OfBytes(ReadName<char>(KVR_GetSystemNameA, handle));
    if (host.name.empty()) host.name = host.wideName;
    host.inAcg = KVR_IsServer(handle) != 0;
    host.holdsSlot = KVR_IsClient(handle) != 0;
    hosts.push_back(std::move(host));
  }
  return hosts;
}

void CollectNamed(const std::vector<Group> &groups, const std::vector<std::string> &names,
                  std::size_t depth, std::vector<const Group *> &found) {
  for (const Group &group : groups) {
    if (group.name != names[depth]) continue;
    if (depth + 1 == names.size()) {
      found.push_back(&group);
    } else {
      CollectNamed(group.children, names, depth + 1, found);
    }
  }
}

const Group &OnlyGroup(const std::vector<const Group *> &found, const GroupPath &path) {
  if (found.size() == 1) return *found.front();
  if (found.empty()) {
    throw Failure(ExitStatus::Usage, "NO_SUCH_GROUP",
                  fmt::format("There is no group '{}'.", PathText(path)),
                  "List the groups with `kvrctl group list`.");
  }
  std::vector<std::string> clients;
  for (const Group *group : found) {
    clients.push_back(group->client == nullptr ? "an offline client"
                                               : ClientPath(group->client->name));
  }
  throw Failure(ExitStatus::Usage, "AMBIGUOUS_GROUP",
                fmt::format("{} groups are called '{}': {}.", found.size(), PathText(path),
                            fmt::join(clients, ", ")),
                "Name the group by its client, as @HOST.");
}

}  // namespace

Library::Library() {
  const std::uint32_t loaded = KVR_Initialize();
  if (loaded == KVR_ERR_NO_LOCAL_ADAPTER) throw NoLocalAdapter();
  if (loaded != KVR_ERR_NOT_SECURED) Require("Initializing the library", loaded);
  Require("Discovering the hosts", KVR_DiscoverServers(nullptr, 0));

  outsidersWithheld_ = KVR_SecurityState() == KVR_OK && KVR_IsMSC() == 0;
  hosts_ = ReadHosts(
      ReadHandles<KVR_SYSTEM>("Listing the ACG", KVR_GetAcgServerCount(), KVR_GetAcgServers));
  if (!outsidersWithheld_) {
    const auto outside = ReadHosts(ReadHandles<KVR_SYSTEM>(
        "Listing the hosts", KVR_GetUnsecureServerCount(), KVR_GetUnsecureServers));
    hosts_.insert(hosts_.end(), outside.begin(), outside.end());
  }
  const auto backups = ReadHandles<KVR_SYSTEM>("Listing the backup MSCs", KVR_GetBackupMSCCount(),
                                               KVR_GetBackupMSCs);
  for (Host &host : hosts_) {
    byHandle_[host.handle] = &host;
    host.backupMsc = std::find(backups.begin(), backups.end(), host.handle) != backups.end();
  }
  groups_ = ReadGroups(nullptr, "");
}

std::vector<Group> Library::ReadGroups(KVR_GROUP parent, const std::string &parentPath) const {
  std::vector<Group> groups;
  const auto children = [parent](KVR_GROUP *list, std::uint32_t *count) {
    return KVR_GetChildAsgs(parent, list, count);
  };
  for (KVR_GROUP handle :
       ReadHandles<KVR_GROUP>("Listing the groups", KVR_GetChildAsgCount(parent), children)) {
    const auto servers = [handle](KVR_SYSTEM *list, std::uint32_t *count) {
      return KVR_GetAsgServers(handle, list, count);
    };
    Group group;
    group.handle = handle;
    group.name = ReadWideName(KVR_GetAsgNameW, handle);
    group.offline = KVR_IsAsgOffline(handle) != 0;
    group.client = Find(KVR_GetAsgClient(handle));
    group.path = group.name.empty() && group.client != nullptr ? ClientPath(group.client->name)
                                                               : JoinPath(parentPath, group.name);
    group.servers = Find(
        ReadHandles<KVR_SYSTEM>("Listing the servers", KVR_GetAsgServerCount(handle), servers));
    group.children = ReadGroups(handle, group.path);
    groups.push_back(std::move(group));
  }
  return groups;
}

const Host *Library::Find(KVR_SYSTEM handle) const {
  const auto found = byHandle_.find(handle);
  return found == byHandle_.end() ? nullptr : found->second;
}

std::vector<const Host *> Library::Find(const std::vector<KVR_SYSTEM> &handles) const {
  std::vector<const Host *> hosts;
  for (KVR_SYSTEM handle : handles) {
    if (const Host *host = Find(handle)) hosts.push_back(host);
  }
  return hosts;
}

void Library::RequireAllHosts(const std::string &doing) const {
  if (outsidersWithheld_) throw Failure(doing, KVR_ERR_NOT_MSC);
}

const Host &Library::HostNamed(const std::string &name) const {
  std::vector<const Host *> found;
  std::vector<std::string> candidates;
  for (const Host &host : hosts_) {
    if (host.name != name && host.wideName != name) continue;
    found.push_back(&host);
    candidates.push_back(host.wideName.empty() ? host.name
                                               : fmt::format("{} ({})", host.name, host.wideName));
  }
  // A name that another host has in the other form only must not hide the host that it stands for.
  std::vector<const Host *> exact;
  std::copy_if(found.begin(), found.end(), std::back_inserter(exact),
               [&name](const Host *host) { return host->name == name; });
  if (exact.size() == 1) return *exact.front();
  if (found.size() == 1) return *found.front();
  if (found.size() > 1) {
    throw Failure(ExitStatus::Usage, "AMBIGUOUS_HOST",
                  fmt::format("{} hosts are called '{}': {}.", found.size(), name,
                              fmt::join(candidates, ", ")),
                  "Name the host by its other name, or give the hosts names that differ.");
  }
  if (fabric::Environment("KVR_HOST") == name) {
    throw Failure(ExitStatus::Usage, "NO_SUCH_HOST",
                  fmt::format("'{}' is this host itself, which is never named in a change.", name),
                  "Name one of the other hosts; `kvrctl hosts` lists them.");
  }
  throw Failure(ExitStatus::Usage, "NO_SUCH_HOST",
                fmt::format("There is no host '{}' among those that this host sees.", name),
                outsidersWithheld_
                    ? "List the hosts with `kvrctl hosts`; those outside the ACG are seen only on "
                      "the MSC."
                    : "List the hosts with `kvrctl hosts`.");
}

std::vector<const Host *> Library::HostsNamed(const std::vector<std::string> &names) const {
  std::vector<const Host *> hosts;
  for (const std::string &name : names) {
    const Host *host = &HostNamed(name);
    if (std::find(hosts.begin(), hosts.end(), host) == hosts.end()) hosts.push_back(host);
  }
  return hosts;
}

const Group &Library::GroupAt(const GroupPath &path) const {
  std::vector<const Group *> found;
  if (path.client.empty()) {
    CollectNamed(groups_, path.names, 0, found);
    return OnlyGroup(found, path);
  }
  const Host &client = HostNamed(path.client);
  ForEachGroup(groups_, [&](const Group &group) {
    if (group.client != &client) return;
    if (path.names.empty()) {
      found.push_back(&group);
    } else {
      CollectNamed(group.children, path.names, 0, found);
    }
  });
  return OnlyGroup(found, path);
}

std::optional<std::vector<const Host *>> Library::AvailableServers(const Group &group) const {
  if (KVR_IsBackupMSC() != 0) return std::nullopt;
  const auto list = [&group](KVR_SYSTEM *systems, std::uint32_t *count) {
    return KVR_GetAvailAsgServers(group.handle, systems, count);
  };
  return Find(ReadHandles<KVR_SYSTEM>("Listing the available servers",
                                      KVR_GetAvailAsgServerCount(group.handle), list));
}

std::vector<const Host *> Library::TakeFailedHosts() const {
  const auto room = static_cast<std::uint32_t>(hosts_.size());
  return Find(
      ReadHandles<KVR_SYSTEM>("Listing the hosts that failed", room, KVR_GetLastOpFailedServers));
}

std::vector<std::string> Library::Notes() const {
  if (!outsidersWithheld_) return {};
  return {"Hosts outside the ACG are seen only on the MSC."};
}

std::vector<std::string> Library::GroupNotes() const {
  if (KVR_SecurityState() != KVR_OK || KVR_IsSecureClient() != 0) return {};
  return {
      "A host that holds no slot does not learn of slots, clients, groups and backup MSCs; ask "
      "on the MSC."};
}

void RequireConfiguration(const std::string &doing) {
  const std::uint32_t code = KVR_SecurityState();
  if (code == KVR_OK) return;
  Failure failure(doing, code);
  failure.hint = "Run the command on a host of the configuration; `kvrctl status` shows a role.";
  throw failure;
}

const Group *ParentOf(const Library &library, const Group &group) {
  const Group *parent = nullptr;
  ForEachGroup(library.Groups(), [&](const Group &candidate) {
    for (const Group &child : candidate.children) {
      if (&child == &group) parent = &candidate;
    }
  });
  return parent;
}

Json NamesOf(const std::vector<const Host *> &hosts) {
  Json names = Json::array();
  for (const Host *host : hosts)
    names.push_back(host->name);
  return names;
}

Json RowsOf(const std::vector<const Host *> &hosts) {
  Json rows = Json::array();
  for (const Host *host : hosts)
    rows.push_back({{"name", host->name}, {"wide_name", host->wideName}});
  return rows;
}

std::string HostTable(const Json &rows, std::string_view none) {
  return Table(rows, {{"name", "HOST"}, {"wide_name", "UTF-16 NAME"}}, none);
}

Json ClientOf(const Group &group) {
  return group.client == nullptr ? Json() : Json(group.client->name);
}

}  // namespace kvrctl
