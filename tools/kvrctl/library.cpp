#include "library.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "adapters.h"
#include "dry_run.h"
#include "fabric/platform_files.h"
#include "failure.h"
#include "no_network.h"
#include "paths.h"
#include "progress.h"

namespace kvrctl {
namespace {

bool g_isOutdated = false;  // the tables are known to differ from what the library holds

// The library of this process, opened at the first call. In a dry run it is not used before it is
// sure that nothing will be written.
kvrapi::Session &OpenSession() {
  static kvrapi::Session session = [] {
    try {
      return kvrapi::Session(kvrapi::Session::DeferDiscovery{});
    } catch (const kvrapi::Error &error) {
      if (error.Code() == KVR_ERR_NO_LOCAL_ADAPTER) throw NoLocalAdapter();
      throw Failure("Initializing the library", error.Code());
    }
  }();
  DryRun::RequireOverlay();
  return session;
}

std::vector<Host> ReadHosts(const std::vector<kvrapi::System> &systems) {
  std::vector<Host> hosts;
  for (const kvrapi::System &system : systems)
    hosts.push_back(
        {system, system.Name(), system.WideName(), system.IsInAcg(), system.HoldsSlot()});
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

Library::Library() : session_(OpenSession()) {
  if (!session_.HasDiscovered() || std::exchange(g_isOutdated, false)) {
    Progress("Discovering the hosts").During([this] { session_.Discover(); });
    ForgetSystems();
  }
  outsidersWithheld_ = session_.IsSecured() && !session_.IsMsc();
  hosts_ = ReadHosts(session_.Members());
  if (!outsidersWithheld_) {
    for (Host &host : ReadHosts(session_.Outsiders()))
      hosts_.push_back(std::move(host));
  }
  for (const kvrapi::System &backup : session_.BackupMscs()) {
    for (Host &host : hosts_)
      host.backupMsc |= host.system == backup;
  }
  groups_ = ReadGroups(session_.Groups(), "");
}

std::vector<Group> Library::ReadGroups(const std::vector<kvrapi::Group> &groups,
                                       const std::string &parentPath) const {
  std::vector<Group> read;
  for (const kvrapi::Group &from : groups) {
    Group group{from, from.Name(), "", from.IsOffline()};
    if (const auto client = from.Client()) group.client = Find(*client);
    group.path = group.name.empty() && group.client != nullptr ? ClientPath(group.client->name)
                                                               : JoinPath(parentPath, group.name);
    group.servers = Find(from.Servers());
    group.children = ReadGroups(from.Children(), group.path);
    read.push_back(std::move(group));
  }
  return read;
}

const Host *Library::Find(const kvrapi::System &system) const {
  const auto found = std::find_if(hosts_.begin(), hosts_.end(),
                                  [&](const Host &host) { return host.system == system; });
  return found == hosts_.end() ? nullptr : &*found;
}

std::vector<const Host *> Library::Find(const std::vector<kvrapi::System> &systems) const {
  std::vector<const Host *> hosts;
  for (const kvrapi::System &system : systems) {
    if (const Host *host = Find(system)) hosts.push_back(host);
  }
  return hosts;
}

void Library::Outdate() {
  g_isOutdated = true;
}

void Library::RequireAllHosts(const std::string &doing) const {
  if (outsidersWithheld_) throw Failure(doing, KVR_ERR_NOT_MSC);
}

const Host &Library::HostNamed(const std::string &name) const {
  if (name.empty()) {
    throw Failure(ExitStatus::Usage, "NO_SUCH_HOST", "The name of a host is empty.",
                  "Name one of the hosts that `kvrctl hosts` lists.");
  }
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
  if (session_.IsBackupMsc()) return std::nullopt;
  return Find(Require("Listing the available servers",
                      [&group] { return group.group.AvailableServers(); }));
}

std::vector<std::string> Library::Notes() const {
  if (!outsidersWithheld_) return {};
  return {"Hosts outside the ACG are seen only on the MSC."};
}

std::vector<std::string> Library::GroupNotes() const {
  if (!session_.IsSecured() || session_.HoldsSlot()) return {};
  return {
      "A host that holds no slot does not learn of slots, clients, groups and backup MSCs; ask "
      "on the MSC."};
}

void RequireConfiguration(const Library &library, const std::string &doing) {
  if (library.Session().IsSecured()) return;
  Failure failure(doing, KVR_ERR_NOT_SECURED);
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

Drawing AsHostTable(std::string none) {
  return AsTable({{"name", "HOST"}, {"wide_name", "UTF-16 NAME"}}, std::move(none));
}

Json ClientOf(const Group &group) {
  return group.client == nullptr ? Json() : Json(group.client->name);
}

}  // namespace kvrctl
