// A picture of the configuration as the library sees it: its hosts and groups as plain records
// beside their handles. The first picture of a run opens the library and discovers the hosts; later
// ones are read from the library as it stands.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kvrapi/kvrapi.hpp"

#include "paths.h"
#include "show.h"

namespace kvrctl {

// A host that the library lists; the local host is never among them.
struct Host {
  kvrapi::System system;
  std::string name = {};      // the 8-bit name, or the UTF-16 one where that is empty; UTF-8
  std::string wideName = {};  // the UTF-16 name, or empty; UTF-8
  bool inAcg = false;
  bool holdsSlot = false;  // a group's client, the MSC or a backup MSC
  bool backupMsc = false;
};

struct Group {
  kvrapi::Group group;
  std::string name = {};         // UTF-8; empty where the client's table could not be read
  std::string path = {};         // by which it is named on the command line (paths.h)
  bool offline = false;          // stands for a client that was not found
  const Host *client = nullptr;  // null for an offline group
  std::vector<const Host *> servers = {};
  std::vector<Group> children = {};
};

class Library {
 public:
  // Opens the library where that is still to be done, and discovers the hosts, waiting until that
  // is complete, where no discovery holds. Throws Failure with the cause where this host has
  // nothing to talk to.
  Library();
  Library(const Library &) = delete;
  Library &operator=(const Library &) = delete;

  kvrapi::Session &Session() const { return session_; }

  const std::vector<Host> &Hosts() const { return hosts_; }
  const std::vector<Group> &Groups() const { return groups_; }  // the top level

  // Tells that a table did not take what the library took for written: the next picture discovers
  // the hosts anew.
  static void Outdate();

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

  // The host of this picture that the system is, or null.
  const Host *Find(const kvrapi::System &system) const;

 private:
  std::vector<const Host *> Find(const std::vector<kvrapi::System> &systems) const;
  std::vector<Group> ReadGroups(const std::vector<kvrapi::Group> &groups,
                                const std::string &parentPath) const;

  kvrapi::Session &session_;
  std::vector<Host> hosts_;
  std::vector<Group> groups_;
  bool outsidersWithheld_ = false;  // this host is secured and not the MSC
};

// Throws Failure (5004) where no configuration is active on this host.
void RequireConfiguration(const Library &library, const std::string &doing);

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
Drawing AsHostTable(std::string none);

// The name of the group's client, or null.
Json ClientOf(const Group &group);

}  // namespace kvrctl
