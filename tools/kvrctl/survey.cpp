#include "survey.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>

#include "kvrapi/tqlink.h"

#include "fabric/description.h"
#include "fabric/platform_files.h"
#include "no_network.h"

namespace kvrctl {
namespace {

// An image as the first adapter that answers gives it, or null. size is what the read is told that
// there is room for.
template <class Image>
std::unique_ptr<Image> Read(const std::vector<Address> &adapters, std::uint32_t size,
                            std::uint32_t (*read)(std::uint32_t, std::uint32_t, std::uint32_t,
                                                  std::uint32_t, void *, std::uint32_t *)) {
  auto image = std::make_unique<Image>();
  for (const Address &at : adapters) {
    std::uint32_t room = size;
    if (read(at.credential[0], at.credential[1], at.id[0], at.id[1], image.get(), &room) == 0) {
      return image;
    }
  }
  return nullptr;
}

std::vector<std::size_t> SilentAdapters(const System &system) {
  std::vector<std::size_t> silent;
  for (std::size_t i = 0; i < system.adapters.size(); ++i) {
    if (Read<SaTableHeader>({system.adapters[i]}, KVR_SA_TABLE_HEADER_SIZE, TQ_ReadSaTableHeader) ==
        nullptr) {
      silent.push_back(i);
    }
  }
  return silent;
}

// What the folder of a simulated network tells of a host without a readable table. Where a fault is
// planned for one without a file, its calls don't tell an absent table from an unread one.
Reach ReachOf(const fabric::Host &host, const fabric::Description &description,
              const std::filesystem::path &folder) {
  if (!host.up) return Reach::Down;
  if (std::none_of(host.adapters.begin(), host.adapters.end(),
                   [](const fabric::Adapter &adapter) { return adapter.up; })) {
    return Reach::NoWay;
  }
  std::error_code none;
  const auto size =
      std::filesystem::file_size(folder / "tables" / fabric::PathOf(host.name + ".satable"), none);
  if (!none) return size == KVR_SA_TABLE_SIZE ? Reach::Refused : Reach::Torn;
  const bool faulty =
      std::any_of(description.faults.begin(), description.faults.end(),
                  [&host](const fabric::Fault &fault) { return fault.host == host.name; });
  return faulty ? Reach::Unknown : Reach::Up;
}

// By name; empty where no description tells.
std::map<std::string, Reach> DescribedReach() {
  std::map<std::string, Reach> reach;
  try {
    const std::filesystem::path folder = FabricFolder();
    const fabric::Description description = ReadDescription(folder);
    for (const fabric::Host &host : description.hosts)
      reach[host.name] = ReachOf(host, description, folder);
  } catch (const Failure &) {
    return {};
  }
  return reach;
}

SurveyedHost SurveyLocal(const std::map<std::string, Reach> &described) {
  SurveyedHost host;
  host.name = fabric::Environment("KVR_HOST").value_or("this host");
  host.local = true;
  host.table = ReadLocalTable();
  const auto told = described.find(host.name);
  if (told != described.end()) host.reach = told->second;
  return host;
}

SurveyedHost SurveySystem(const System &system, const std::map<std::string, Reach> &described) {
  SurveyedHost host;
  host.name = system.name;
  host.wideName = system.wideName;
  host.table = ReadTable(system);
  if (host.table != nullptr) host.silentAdapters = SilentAdapters(system);
  const auto told = described.find(system.name);
  if (told != described.end()) host.reach = told->second;
  return host;
}

std::vector<MissingClient> MissingClients(const Library &library) {
  std::vector<MissingClient> missing;
  ForEachGroup(library.Groups(), [&](const Group &group) {
    if (!group.offline) return;
    MissingClient &one = missing.emplace_back();
    const Group *parent = ParentOf(library, group);
    if (parent != nullptr && parent->client != nullptr) one.parent = parent->client->name;
    for (const Group &child : group.children) {
      if (child.client != nullptr) one.clients.push_back(child.client->name);
    }
  });
  return missing;
}

}  // namespace

std::unique_ptr<SaTableHeader> ReadHeader(const System &host) {
  return Read<SaTableHeader>(host.adapters, KVR_SA_TABLE_HEADER_SIZE, TQ_ReadSaTableHeader);
}

std::unique_ptr<AccessControlTable> ReadAccess(const System &host) {
  return Read<AccessControlTable>(host.adapters, KVR_POSITION_COUNT, TQ_ReadAccessControlTable);
}

std::unique_ptr<SaTable> ReadTable(const System &host) {
  return Read<SaTable>(host.adapters, KVR_SA_TABLE_SIZE, TQ_ReadSaTable);
}

std::unique_ptr<SaTable> ReadLocalTable() {
  return Read<SaTable>({LocalAddress()}, KVR_SA_TABLE_SIZE, TQ_ReadSaTable);
}

Survey TakeSurvey(const Library &library) {
  const auto described = DescribedReach();
  Survey survey;
  survey.hosts.push_back(SurveyLocal(described));
  for (const System &system : Systems()) {
    if (system.excluded) {
      survey.excluded.push_back(system.name);
    } else {
      survey.hosts.push_back(SurveySystem(system, described));
    }
  }
  survey.missing = MissingClients(library);
  return survey;
}

}  // namespace kvrctl
