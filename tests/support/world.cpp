#include "support/world.h"

#include <cstring>
#include <iterator>
#include <sstream>

#include "fabric/current.h"

namespace kvrtest {
namespace {

std::string Small(std::string name) {
  for (char &letter : name) letter = static_cast<char>(letter | 0x20);
  return name;
}

std::string NamesIn(const kvr::OrderedList *systems) {
  std::vector<const char *> names;
  for (const kvr::SystemRecord &system : kvr::ListView<kvr::SystemRecord>(systems))
    names.push_back(system.discovered.systemName);
  return fmt::format("{}", fmt::join(names, " "));
}

std::string TreeOf(const kvr::OrderedList *groups, bool sorted, bool named) {
  std::vector<std::string> texts;
  for (kvr::GroupRecord &group : kvr::ListView<kvr::GroupRecord>(groups)) {
    std::string &text = texts.emplace_back("?");
    KVR_WCHAR name[KVR_NAME_CAPACITY] = {};
    KVR_GetAsgNameW(&group, name, KVR_NAME_CAPACITY);
    if (KVR_SYSTEM client = KVR_GetAsgClient(&group))
      text = client->discovered.systemName + std::to_string(client->saIndex);
    if (named) text += fmt::format("={:x}", fmt::join(std::vector<int>(name, name + 32), ""));
    if (group.serverCount != 0) text += "{" + NamesIn(group.servers) + "}";
    if (group.childCount != 0) text += "(" + TreeOf(group.children, sorted, named) + ")";
  }
  if (sorted) std::ranges::sort(texts);
  return fmt::format("{}", fmt::join(texts, " "));
}

}  // namespace

std::vector<std::string> Words(const std::string &text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

bool Same(const SaTable &a, const SaTable &b) { return std::memcmp(&a, &b, sizeof a) == 0; }

SaTable MakeImage(const std::string &line) {
  SaTable image{};
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) image.entries[n].slotIndex = n;
  const std::vector<std::string> words = Words(line);
  for (std::size_t i = 1; i < words.size(); ++i) {
    unsigned slot = 0, flags = 0;
    if (std::sscanf(words[i].c_str(), "s%u", &slot) == 1)
      image.entries[slot].access.serveFlags = ACE_SERVES;
    if (std::sscanf(words[i].c_str(), "%u=%x", &slot, &flags) == 2)
      image.entries[slot].access.roleFlags = flags;
  }
  for (std::size_t i = 0; i < words[0].size(); ++i) {  // the bytes of each word are reversed
    reinterpret_cast<char *>(image.header.asciiName)[i ^ 3] = Small(words[0])[i];
    reinterpret_cast<char *>(image.header.wideName)[2 * i ^ 3] = Small(words[0])[i];
  }
  return image;
}

World::World(const std::vector<std::string> &lines, unsigned adapters, bool known) {
  fabric::Description description = {known, 100, {}, {}};
  for (std::uint8_t number = 0; number < lines.size(); ++number) {
    const std::string name = Words(lines[number])[0];
    const bool excluded = lines[number].find("excluded") != std::string::npos;
    fabric::Host host = {name, {name.begin(), name.end()}, true, excluded, {}};
    for (std::uint8_t i = 0; i < adapters; ++i) {
      host.adapters.push_back({{1, number, i}, {{2, number, i}}, {{3}}});
      if (i % 2 == 1) host.adapters[i].credential.reset();
    }
    description.hosts.push_back(host);
  }
  network_ = std::make_shared<fabric::Network>(description, "");
  network_->SetLogging(true);
  Use();
  for (const std::string &line : lines)
    if (Words(line).size() > 1) Plant(line);
}

void World::Use() const { fabric::SetCurrentNetwork(network_); }

World::~World() {
  network_->StopAnnouncing();
  ForgetEverything();
  fabric::SetCurrentNetwork(nullptr);
}

void World::Plant(const std::string &line) const {
  network_->PlantImage(Words(line)[0], MakeImage(line));
}

std::uint32_t World::Start(const std::string &host) const {
  ForgetEverything();
  network_->SetLocalHost(host);
  return KVR_Initialize();
}

std::uint32_t World::As(const std::string &host) const {
  const std::uint32_t result = Start(host);
  KVR_DiscoverServers(nullptr, 0);
  network_->TakeLog();
  return result;
}

std::string World::Calls(bool all) const {
  std::vector<std::string> texts;
  for (const auto &[function, host, adapter, result, payload] : network_->TakeLog()) {
    const bool tq = function.starts_with("TQ_");
    if (!tq && !all) continue;
    std::string &text = texts.emplace_back(function.substr(tq ? 3 : 5));
    if (!host.empty()) text += ":" + host;
    if (adapter.value_or(0) > 0) text += std::to_string(*adapter);
    if (tq && result != 0 && !text.starts_with("Get")) text += "!";
  }
  return fmt::format("{}", fmt::join(texts, " "));
}

KVR_SYSTEM System(const std::string &host) {
  for (kvr::SystemRecord &system : kvr::Systems())
    if (system.discovered.systemName == host) return &system;
  return nullptr;
}

KVR_GROUP Group(const std::string &client) {
  KVR_SYSTEM wanted = client == "?" ? kvr::OFFLINE_CLIENT : System(client);
  KVR_GROUP found = nullptr;
  kvr::AnyGroupBelow(kvr::g_topGroups, [&](kvr::GroupRecord &group) {
    if (group.client == wanted) found = &group;
    return found != nullptr;
  });
  return found;
}

std::uint32_t Create(const std::string &parent, const std::string &client, std::uint32_t reserve) {
  return KVR_CreateAsgA(Group(parent), Small(client).c_str(), System(client), &reserve, nullptr);
}

std::string Tree() { return TreeOf(kvr::g_topGroups, false, false); }

std::string Model(bool groupNames) {
  std::string text =
      fmt::format("slot {} role {}{}{}{}{} systems {}+{}={} backups {} groups {}: {}\n",
                  kvr::g_localIndex, kvr::g_securityActive, kvr::g_isSecureClient, kvr::g_isMsc,
                  kvr::g_isBackupMsc, kvr::g_switchAccessEnabled != 0 ? 1 : 0, kvr::g_secureCount,
                  kvr::g_unsecureCount, kvr::g_systemCount, NamesIn(kvr::g_backupMscList),
                  kvr::g_topGroupCount, TreeOf(kvr::g_topGroups, true, groupNames));
  for (const kvr::SystemRecord &s : kvr::Systems())
    text += fmt::format("{} in {} slot {} groups {} serves {:x}\n", s.discovered.systemName,
                        s.inAcg, s.saIndex, s.asgServerCount, fmt::join(s.indexBitmap, "."));
  return text;
}

}  // namespace kvrtest
