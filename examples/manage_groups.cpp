// Takes hosts into a configuration, makes a group among them, and shows what to do when some hosts
// could not be written and when a value that was kept has become stale.
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "kvrapi/kvrapi.hpp"

namespace {

constexpr char kName[] = "sales";

void PrintHosts(const char *title, const std::vector<kvrapi::System> &hosts) {
  std::cout << title << ':';
  for (const kvrapi::System &host : hosts)
    std::cout << ' ' << host.Name() << (host.HoldsSlot() ? " (holds a slot)" : "");
  std::cout << '\n';
}

void PrintTree(const std::vector<kvrapi::Group> &groups, std::size_t depth) {
  for (const kvrapi::Group &group : groups) {
    std::cout << std::string(2 * depth, ' ') << group.Name();
    if (const auto client = group.Client()) std::cout << ", client " << client->Name();
    for (const kvrapi::System &server : group.Servers())
      std::cout << ", server " << server.Name();
    std::cout << '\n';
    PrintTree(group.Children(), depth + 1);
  }
}

std::optional<kvrapi::Group> FindGroup(const kvrapi::Session &session, const std::string &name) {
  for (const kvrapi::Group &group : session.Groups()) {
    if (group.Name() == name) return group;
  }
  return std::nullopt;
}

// The group, made of the first member that can be its client and one that can serve it, with some
// slots for groups below. Where fewer are free, it has fewer.
kvrapi::Group MakeGroup(kvrapi::Session &session) {
  for (const kvrapi::System &host : session.Members()) {
    if (host.HoldsSlot()) continue;
    const auto [group, reserved] = session.CreateGroup(kName, host, 4);
    std::cout << "made " << kName << " with " << reserved << " slots for groups below\n";
    const std::vector<kvrapi::System> available = group.AvailableServers();
    if (!available.empty()) group.AddServer(available.front());
    return group;
  }
  throw kvrapi::Error("making a group", KVR_ERR_SYSTEM_NOT_IN_ACG);
}

void Manage() {
  kvrapi::Session session;
  if (!session.IsSecured()) {
    std::cout << "made a configuration, in slot " << session.CreateConfiguration() << '\n';
  }
  PrintHosts("outside", session.Outsiders());
  for (const kvrapi::System &host : session.Outsiders())
    session.AddToAcg(host);
  PrintHosts("in the ACG", session.Members());

  const auto known = FindGroup(session, kName);
  const kvrapi::Group group = known ? *known : MakeGroup(session);
  PrintTree(session.Groups(), 0);

  // A change of many hosts that fails at some is done at the others.
  try {
    session.RenewKeys();
  } catch (const kvrapi::Error &error) {
    if (error.FailedHosts().empty()) throw;
    for (const kvrapi::FailedHost &failed : error.FailedHosts())
      std::cout << "still with the old keys: " << failed.name << '\n';
  }

  // What others have changed since is seen by a discovery, which ends all values from before it.
  session.Discover();
  if (group.IsStale() && FindGroup(session, kName)) std::cout << "found " << kName << " again\n";
}

}  // namespace

int main() {
  try {
    Manage();
    return 0;
  } catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
