#include "support/trial.h"

#include <cstring>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>
#include <tuple>

namespace kvrtest {
namespace {

using Names = std::set<std::string>;

// Where tables and model are left unequal on purpose, by "change result calls".
enum : unsigned {
  kTables = 1,     // tables that a failure leaves changed
  kModel = 2,      // a model that it leaves changed
  kElsewhere = 4,  // a repetition that leads elsewhere
  kNames = 8,      // groups' names in the model that are not those in the tables
  kOutdated = 16,  // a model that is behind the tables until the next discovery
  kHarmful = 32    // tables from which the next discovery tells something else for good
};
const std::pair<unsigned, std::regex> kNamed[] = {
    // A name that could not be stored is not reported; a name's other form waits for a discovery.
    {kNames, std::regex("Header:\\w!")},
    {kNames | kOutdated, std::regex("^RenameAsg")},
    // The role and the model go; what a backup MSC serves is as in the copy it was given.
    {kOutdated, std::regex("^(AssignNewMSC|AddBackupMSC)")},
    // The slot that was drawn stays drawn.
    {kModel, std::regex("^CreateKVR 5029")},
    // The slots stay taken in the cache of a local table that could not be stored.
    {kElsewhere, std::regex("^(CreateAsg.|ModifyReservedIndexCount) 5030")},
    // The first of two tables could not be restored.
    {kTables | kElsewhere, std::regex("ControlTable:(\\w) .*! WriteAccessControlTable:\\1!")},
    // The servers' tables are not restored when the client's could not be written.
    {kTables | kModel, std::regex("^DeleteAsg 5019 .*WriteAccessControlTable:\\w!$")},
    // The group has gone, a server that failed keeps its grant.
    {kHarmful, std::regex("^DeleteAsg 5008")},
    // So does a server that is the client or the pool host too: its older image is written last,
    // unless a deletion that failed has cleared it before.
    {kHarmful | kElsewhere, std::regex("^DeleteAsg .*ReadAccessControlTable:(\\w)\\b.*"
                                       "ReadAccessControlTable:\\1\\b")},
    // What is done stays done; the tree and the role wait for the rest.
    {kTables | kModel, std::regex("^DeleteKVR 50(08|31)")},
    // Hosts are not restored for the others; the flag changes first.
    {kTables, std::regex("^GenerateNewKeys 5008")},
    {kTables | kModel, std::regex("^EnableSwitchAccess 5008")},
    // The flag of this process has changed, the local table could not be stored.
    {kHarmful, std::regex("^EnableSwitchAccess .*WriteSaTable:\\w!")},
    // A host that joined the ACG first stays in it.
    {kTables | kModel, std::regex("^AddBackupMSC 5019 WriteSaTable:\\w ")}};

unsigned UnequalAfter(const std::string &text) {
  unsigned unequal = 0;
  for (const auto &[kind, where] : kNamed)
    if (std::regex_search(text, where)) unequal |= kind;
  return unequal;
}

// Every variable of the library that outlives a call, for hosts with one adapter.
auto Variables() {
  using namespace kvr;
  return std::tie(g_systemList, g_backupMscList, g_topGroups, g_systemCount, g_secureCount,
                  g_unsecureCount, g_topGroupCount, g_apiInitialized, g_localStateLoaded,
                  g_initResult, g_localAdapters[0], g_localAdapterCount, g_localSaTable,
                  g_securityActive, g_isSecureClient, g_isMsc, g_isBackupMsc, g_switchAccessEnabled,
                  g_localIndex);
}

// Lets a second process act, while the first one waits.
template <class Act>
void Aside(Act act) {
  const auto first = std::apply([](auto... values) { return std::tuple(values...); }, Variables());
  Variables() = std::decay_t<decltype(first)>{};
  ForgetEverything();
  act();
  ForgetEverything();
  Variables() = first;
}

struct State {
  std::uint32_t result;
  fabric::ImageSet images;
  std::string model, named;  // without and with the groups' names
};

State Seen(const World &world, std::uint32_t result) {
  return {result, world->Images(), Model(false), Model(true)};
}

void Require(bool promise, const std::string &what) {
  if (!promise) throw std::logic_error(what);
}

Names Hosts(const std::string &calls, const char *pattern) {
  const std::regex regex(pattern);
  return {std::sregex_token_iterator(calls.begin(), calls.end(), regex, 1), {}};
}

void RequireChangedWithin(const State &from, const State &to, const Names &allowed,
                          const std::string &what) {
  for (const std::string &host : fabric::ChangedHosts(from.images, to.images))
    Require(allowed.contains(host), what + ": table of " + host);
}

Names TakeMarked() {
  std::uint32_t count = 64;
  KVR_SYSTEM marked[64];
  KVR_GetLastOpFailedServers(marked, &count);
  Names names;
  for (std::uint32_t i = 0; i < count; ++i) names.insert(marked[i]->discovered.systemName);
  return names;
}

void RequireMarks(const std::string &change, const std::string &calls) {
  const Names marked = TakeMarked();
  Names failed;
  if (std::regex_search(change, std::regex("^(Generate|Enable|DeleteKVR (?!5031))")))
    failed = Hosts(calls, "(?:ControlTable|KeyTable|RemoveSaTable):(\\w)!");
  Require(change == "DeleteAsg 5008" ? !marked.empty()
                                     : change.starts_with("DeleteAsg") || marked == failed,
          "marked hosts");
}

// No slot has two holders, but for the MSC's, which its backups share. Each but the MSC's is marked
// as a child by one other host, which has delegated to its holder what that one reserves.
void RequireSlotsInOrder(const World &world) {
  std::map<std::string, SaTable> tables;
  for (const auto &[host, bytes] : world->Images()) tables.emplace(host, *world->Image(host));
  for (const std::string &backup : Holders(world, ACE_BACKUP_MSC)) tables.erase(backup);
  const auto roles = [](const SaTable &table, std::uint32_t slot) {
    return table.entries[slot].access.roleFlags;
  };
  std::map<std::uint32_t, std::string> holders;
  for (const auto &[host, table] : tables) {
    for (std::uint32_t own = 0; own < KVR_SLOT_COUNT; ++own) {
      if ((roles(table, own) & ACE_SELF) == 0) continue;
      Require(holders.emplace(own, host).second, fmt::format("slot {}: two holders", own));
      if ((roles(table, own) & ACE_MSC) != 0) continue;
      const auto isPool = [&](auto &other) { return (roles(other.second, own) & ACE_CHILD) != 0; };
      Require(std::ranges::count_if(tables, isPool) == 1, fmt::format("slot {}: one pool", own));
      const auto &[pool, above] = *std::ranges::find_if(tables, isPool);
      for (std::uint32_t n = 0; n < KVR_SLOT_COUNT; ++n)
        Require((roles(table, n) & ACE_RESERVED) == 0 || (roles(above, n) & ACE_DELEGATED) != 0,
                fmt::format("slot {}: reserved by {}, not delegated by {}", n, host, pool));
    }
  }
}

std::uint32_t AssignNewMsc(const World &world, KVR_SYSTEM system) {
  const bool isBackup = KVR_IsBackupMSC() != 0;
  const std::vector<std::string> lost = Holders(world, ACE_MSC);
  const std::uint32_t result = KVR_AssignNewMSC(system);
  if (result == KVR_OK && isBackup)
    for (const std::string &host : lost) world->RemoveImage(host);
  return result;
}

}  // namespace

std::vector<std::string> Holders(const World &world, std::uint32_t flag) {
  const auto has = [=](const SaEntry &entry) { return (entry.access.roleFlags & flag) != 0; };
  std::vector<std::string> holders;
  for (const auto &[host, bytes] : world->Images())
    if (std::ranges::any_of(world->Image(host)->entries, has)) holders.push_back(host);
  return holders;
}

std::string News(const World &world, const fabric::ImageSet &before) {
  std::vector<std::string> news;
  const SaTable msc = world->Image("M").value_or(SaTable{});
  for (const std::string &host : fabric::ChangedHosts(before, world->Images())) {
    news.push_back(host + (world->Image(host) ? "" : " gone"));
    SaTable old{};
    if (before.contains(host)) std::memcpy(&old, before.at(host).data(), sizeof old);
    const SaTable now = world->Image(host).value_or(old);
    for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
      const AccessEntry &was = old.entries[n].access, &is = now.entries[n].access;
      if (is.roleFlags != was.roleFlags) news.push_back(fmt::format("{}={:x}", n, is.roleFlags));
      if (is.serveFlags != was.serveFlags) news.push_back(fmt::format("s{}={}", n, is.serveFlags));
    }
    const auto sameKey = [&](const SaTable &table) {
      return std::memcmp(&table.entries[9].key, &now.entries[9].key, sizeof(KeyEntry)) == 0;
    };
    if (const auto name = now.header.asciiName[0]; name != old.header.asciiName[0])
      news.emplace_back(name != 0 ? "named" : "unnamed");
    if (!sameKey(old)) news.emplace_back(sameKey(msc) ? "keys" : "other keys");
  }
  return fmt::format("{}", fmt::join(news, " "));
}

std::uint32_t Make(const World &world, const Change &change) {
  KVR_GROUP group = Group(change.group);
  KVR_SYSTEM system = System(change.host);
  std::uint32_t count = change.count;
  const std::map<std::string, std::function<std::uint32_t()>> functions = {
      {"CreateKVR", [] { return KVR_CreateKVR(nullptr); }},
      {"DeleteKVR", KVR_DeleteKVR},
      {"GenerateNewKeys", KVR_GenerateNewKeys},
      {"SyncDiscovery", KVR_SyncDiscovery},
      {"EnableSwitchAccess", [&] { return KVR_EnableSwitchAccess(count % 3); }},
      {"AddServerToACG", [&] { return KVR_AddServerToACG(system); }},
      {"RemoveServerFromACG", [&] { return KVR_RemoveServerFromACG(system); }},
      {"AddBackupMSC", [&] { return KVR_AddBackupMSC(system); }},
      {"RemoveBackupMSC", [&] { return KVR_RemoveBackupMSC(system); }},
      {"AssignNewMSC", [&] { return AssignNewMsc(world, system); }},
      {"CreateAsgA", [&] { return Create(change.group, change.host, count); }},
      {"CreateAsgW",
       [&] {
         return KVR_CreateAsgW(group, WIDE("\u0416"), system, count ? &count : nullptr, nullptr);
       }},
      {"RenameAsgA", [&] { return KVR_RenameAsgA(group, change.host.c_str()); }},
      {"RenameAsgW", [&] { return KVR_RenameAsgW(group, WIDE("\u0416")); }},
      {"DeleteAsg", [&] { return KVR_DeleteAsg(group); }},
      {"AddServerToAsg", [&] { return KVR_AddServerToAsg(group, system); }},
      {"RemoveServerFromAsg", [&] { return KVR_RemoveServerFromAsg(group, system); }},
      {"ModifyReservedIndexCount", [&] { return KVR_ModifyReservedIndexCount(group, &count); }},
      {"AssignNewClient", [&] { return KVR_AssignNewClient(group, system); }}};
  return functions.at(change.function)();
}

std::size_t Try(const World &world, const std::string &host, const Change &change,
                const std::function<void(const World &)> &addFaults) {
  ++g_now;
  TakeMarked();
  const State before = Seen(world, 0);
  State want;
  Aside([&] {
    world.As(host);
    want = Seen(world, Make(world, change));
  });
  world->RestoreImages(before.images);
  world.Calls();
  addFaults(world);
  State now = Seen(world, Make(world, change));
  world->ClearFaults();
  const std::string calls = world.Calls();
  const std::string outcome = change.function + " " + std::to_string(now.result);
  const Names failed = Hosts(calls, "\\w+:(\\w)!");
  const bool succeeded = now.result == KVR_OK || now.result == KVR_ERR_RESERVED_COUNT_REDUCED;
  unsigned unequal = UnequalAfter(outcome + " " + calls);
  const auto sameModel = [&](const State &a, const State &b) {
    return (unequal & kNames) != 0 ? a.model == b.model : a.named == b.named;
  };
  const auto same = [&](const State &a, const State &b) {
    return a.result == b.result && a.images == b.images && sameModel(a, b);
  };
  try {
    RequireMarks(outcome, calls);
    if (failed.empty()) {
      Require(same(now, want), "a process that lives long does as a fresh one");
      Require(succeeded || (now.images == before.images && now.named == before.named),
              "a refusal changes nothing");
    } else if (succeeded || (change.function == "DeleteAsg" && now.model == want.model)) {
      Require(sameModel(now, want), "model of a success");
      RequireChangedWithin(want, now, failed, "success");
    } else {
      Require((unequal & kModel) != 0 || now.named == before.named, "model of a failure");
      RequireChangedWithin(
          before, now, (unequal & kTables) != 0 ? Hosts(calls, "\\w+:(\\w)") : Names{}, "failure");
      if (change.function == "EnableSwitchAccess") KVR_EnableSwitchAccess(change.count + 3);
      now = Seen(world, Make(world, change));
      unequal |= UnequalAfter(fmt::format("{} {} {}", change.function, now.result, world.Calls()));
      Require((unequal & kElsewhere) != 0 || same(now, want), fmt::format("now {}", now.result));
    }
    if ((unequal & kHarmful) != 0)
      world->RestoreImages(before.images);
    else if (now.images != want.images)
      world->RestoreImages(want.images);
    if ((unequal & (kOutdated | kHarmful)) != 0 || now.images != want.images) world.As(host);
    std::string told;
    Aside([&] {
      world.As(host);
      told = Model();
    });
    Require(told == Model(), "the tables tell " + told + "the model " + Model());
    RequireSlotsInOrder(world);
  } catch (const std::logic_error &error) {
    throw std::logic_error(fmt::format("{} on {}: {}\ncalls {}\nbefore {}wanted {} {}got {} {}",
                                       outcome, host, error.what(), calls, before.named,
                                       want.result, want.named, now.result, now.named));
  }
  return Words(calls).size();
}

}  // namespace kvrtest
