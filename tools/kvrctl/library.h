// One run's picture of the configuration: the library opened and one discovery done, its hosts and
// groups as plain records beside their handles.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "kvrapi/kvrapi.h"

#include "paths.h"
#include "show.h"

namespace kvrctl {

// A host that the library lists; the local host is never among them.
struct Host {
  KVR_SYSTEM handle = nullptr;
  std::string name;      // the 8-bit name, or the UTF-16 one where that is empty; UTF-8
  std::string wideName;  // the UTF-16 name, or empty; UTF-8
  bool inAcg = false;
  bool holdsSlot = false;  // a group's client, the MSC or a backup MSC
  bool backupMsc = false;
};

struct Group {
  KVR_GROUP handle = nullptr;
  std::string name;              // UTF-8; empty where the client's table could not be read
  std::string path;              // by which it is named on the command line (paths.h)
  bool offline = false;          // stands for a client that was not found
  const Host *client = nullptr;  // null for an offline group
  std::vector<const Host *> servers;
  std::vector<Group> children;
};

class Library {
 public:
  // Initializes the library and discovers the hosts, waiting until that is complete. Throws Failure
  // with the cause where this host has nothing to talk to.
  Library();
  Library(const Library &) = delete;
  Library &operator=(const Library &) = delete;

  const std::vector<Host> &Hosts() const { return hosts_; }
  const std::vector<Group> &Groups() const { return groups_; }  // the top level

  // What a reader of its host lists and counts must know; mostly nothing.
  std::vector<std::string> Notes() const;

  // What a reader of its slots, clients and groups must know; mostly nothing.
  std::vector<std::string> GroupNotes() const;

  // Throws Failure (5000) where the hosts outside the ACG are withheld from this host, so that one
  // of them cannot be named.
  void RequireAllHosts(const std::string &doing) const;

  // The host that a user calls by its 8-bit name, or by its UTF-16 name where no host or several
  // have it as their 8-bit one. Throws Failure when there is none, or more than one.
  const Host &HostNamed(const std::string &name) const;

  // The hosts called so, in the order of the names. Throws Failure as HostNamed.
  std::vector<const Host *> HostsNamed(const std::vector<std::string> &names) const;

  // The group at a path. Throws Failure when there is none, or more than one.
  const Group &GroupAt(const GroupPath &path) const;

  // The hosts that could be added to the group as servers; none on a backup MSC, which may not
  // know.
  std::optional<std::vector<const Host *>> AvailableServers(const Group &group) const;

  // The hosts that the last change could not write; their marks are cleared.
  std::vector<const Host *> TakeFailedHosts() const;

 private:
  const Host *Find(KVR_SYSTEM handle) const;
  std::vector<const Host *> Find(const std::vector<KVR_SYSTEM> &handles) const;
  std::vector<Group> ReadGroups(KVR_GROUP parent, const std::string &parentPath) const;

  std::vector<Host> hosts_;
  std::unordered_map<KVR_SYSTEM, const Host *> byHandle_;
  std::vector<Group> groups_;
  bool outsidersWithheld_ = false;  // this host is secured and not the MSC
};

// Throws Failure (5004) where no configuration is active on this host.
void RequireConfiguration(const std::string &doing);

// Calls visit(group) for every group below, parents before their children.
template <class Visit>
void ForEachGroup(const std::vector<Group> &groups, const Visit &visit) {
  for (const Group &group : groups) {
    visit(group);
    ForEachGroup(group.children, visit);
  }
}

// The group right above this one of the library's, or null at the top level.
const Group *ParentOf(const Library &library, const Group &group);

// The hosts' names, in their order.
Json NamesOf(const std::vector<const Host *> &hosts);

// The hosts as records of their two names, and such records as a table; with none, the sentence
// `none`.
Json RowsOf(const std::vector<const Host *> &hosts);
std::string HostTable(const Json &rows, std::string_view none);

// The name of the group's client, or null.
Json ClientOf(const Group &group);

}  // namespace kvrctl
