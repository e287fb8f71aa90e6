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
const struct {
  unsigned unequal;
  std::regex where;
} kNamed[] = {
    // A name that could not be stored is not reported; a name's other form waits for a discovery.
    {kNames, std::regex("Header:\\w!")},
    {kNames | kOutdated, std::regex("^RenameAsg")},
    // The role and the model go; what a backup MSC serves is as in the copy it was given.
    {kOutdated, std::regex("^(AssignNewMSC|AddBackupMSC)")},
    // The slot that was drawn stays drawn.
    {kModel, std::regex("^CreateKVR 5029")},
    // The slots stay taken in the cache of a local table that could not be stored.
    {kElsewhere, std::regex("^(CreateAsg|ModifyReservedIndexCount) 5030")},
    // The first of two tables could not be restored.
    {kTables | kElsewhere, std::regex("ControlTable:(\\w) .*! WriteAccessControlTable:\\1!")},
    // The servers' tables are not restored when the client's could not be written.
    {kTables | kModel, std::regex("^DeleteAsg 5019")},
    // The group has gone, a server that failed keeps its grant.
    {kHarmful, std::regex("^DeleteAsg 5008")},
    // So does a server that is the client or the pool host too: its older image is written last.
    {kHarmful, std::regex("^DeleteAsg .*WriteAccessControlTable:(\\w) .*WriteAccessControlTable"
                          ":\\1\\b")},
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

template <class... T>
std::tuple<T...> Values(const std::tuple<T &...> &variables) {
  return variables;
}

// A second process, while the first one waits.
class Aside {
 public:
  Aside() : first_(Values(Variables())) {
    Variables() = decltype(first_){};
    ResetLibrary();
  }
  Aside(const Aside &) = delete;
  Aside &operator=(const Aside &) = delete;
  ~Aside() {
    ResetLibrary();
    Variables() = first_;
  }

 private:
  decltype(Values(Variables())) first_;
};

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
  Names names;
  for (std::sregex_iterator match(calls.begin(), calls.end(), regex), end; match != end; ++match)
    names.insert((*match)[1]);
  return names;
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
  if (std::regex_search(change, std::regex("^(GenerateNewKeys|EnableSwitchAccess|DeleteKVR)"))) {
    Names failed = Hosts(calls, "(?:ControlTable|KeyTable|RemoveSaTable):(\\w)!");
    if (change == "DeleteKVR 5031") failed.clear();
    Require(marked == failed, "marked hosts");
  } else {
    Require(change == "DeleteAsg 5008" ? !marked.empty()
                                       : change.starts_with("DeleteAsg") || marked.empty(),
            "marked hosts");
  }
}

// No slot has two holders, but for the MSC's, which its backups share. Each but the MSC's is marked
// as a child by one other host, which has delegated to its holder what that one reserves.
void RequireSlotsInOrder(const World &world) {
  std::map<std::string, SaTable> tables;
  for (const auto &[host, bytes] : world->Images()) tables.emplace(host, *world->Image(host));
  const auto roles = [](const SaTable &table, std::uint32_t slot) {
    return table.entries[slot].access.roleFlags;
  };
  const auto isBackup = [&](const SaTable &table) {
    for (std::uint32_t n = 0; n < KVR_SLOT_COUNT; ++n)
      if ((roles(table, n) & ACE_BACKUP_MSC) != 0) return true;
    return false;
  };
  std::erase_if(tables, [&](const auto &item) { return isBackup(item.second); });
  std::map<std::uint32_t, std::string> holders;
  for (const auto &[host, table] : tables) {
    for (std::uint32_t own = 0; own < KVR_SLOT_COUNT; ++own) {
      if ((roles(table, own) & ACE_SELF) == 0) continue;
      Require(holders.emplace(own, host).second, fmt::format("slot {}: two holders", own));
      if ((roles(table, own) & ACE_MSC) != 0) continue;
      unsigned pools = 0;
      for (const auto &[pool, above] : tables) {
        if ((roles(above, own) & ACE_CHILD) == 0) continue;
        ++pools;
        for (std::uint32_t n = 0; n < KVR_SLOT_COUNT; ++n)
          Require((roles(table, n) & ACE_RESERVED) == 0 || (roles(above, n) & ACE_DELEGATED) != 0,
                  fmt::format("slot {}: reserved by {}, not delegated by {}", n, host, pool));
      }
      Require(pools == 1, fmt::format("slot {} of {}: in {} pools", own, host, pools));
    }
  }
}

}  // namespace

std::size_t Try(const World &world, const std::string &host, const Change &change,
                const std::function<void(const World &)> &addFaults) {
  ++g_now;
  TakeMarked();
  const State before = Seen(world, 0);
  State want;
  {
    const Aside process;
    world.As(host);
    want = Seen(world, change.run());
    world->RestoreImages(before.images);
  }
  world.Calls();
  addFaults(world);
  State now = Seen(world, change.run());
  world->ClearFaults();
  const std::string calls = world.Calls();
  const std::string outcome = change.name + " " + std::to_string(now.result);
  const Names failed = Hosts(calls, "\\w+:(\\w)!");
  const auto succeeded = [](const State &state) {
    return state.result == KVR_OK || state.result == KVR_ERR_RESERVED_COUNT_REDUCED;
  };
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
      Require(succeeded(now) || (now.images == before.images && now.named == before.named),
              "a refusal changes nothing");
    } else if (succeeded(now) || (change.name == "DeleteAsg" && now.model == want.model)) {
      Require(sameModel(now, want), "model of a success");
      RequireChangedWithin(want, now, failed, "success");
    } else {
      Require((unequal & kModel) != 0 || now.named == before.named, "model of a failure");
      RequireChangedWithin(
          before, now, (unequal & kTables) != 0 ? Hosts(calls, "\\w+:(\\w)") : Names{}, "failure");
      now = Seen(world, change.again());
      unequal |= UnequalAfter(fmt::format("{} {} {}", change.name, now.result, world.Calls()));
      Require((unequal & kElsewhere) != 0 || same(now, want), fmt::format("now {}", now.result));
    }
    if ((unequal & kHarmful) != 0)
      world->RestoreImages(before.images);
    else if (now.images != want.images)
      world->RestoreImages(want.images);
    if ((unequal & (kOutdated | kHarmful)) != 0 || now.images != want.images) world.As(host);
    const std::string model = Model();
    Aside process;
    world.As(host);
    Require(model == Model(), "the tables tell " + Model() + "the model " + model);
    RequireSlotsInOrder(world);
  } catch (const std::logic_error &error) {
    throw std::logic_error(fmt::format("{} on {}: {}\ncalls {}\nbefore {}wanted {} {}got {} {}",
                                       outcome, host, error.what(), calls, before.named,
                                       want.result, want.named, now.result, now.named));
  }
  return Words(calls).size();
}

std::uint32_t AssignNewMsc(const World &world, KVR_SYSTEM system) {
  const bool isBackup = KVR_IsBackupMSC() != 0;
  const std::uint32_t slot = static_cast<std::uint32_t>(kvr::g_localIndex);
  const auto before = world->Images();
  const std::uint32_t result = KVR_AssignNewMSC(system);
  if (result != KVR_OK || !isBackup) return result;
  for (const auto &[host, bytes] : before) {
    SaTable table;
    std::memcpy(&table, bytes.data(), sizeof table);
    if ((table.entries[slot].access.roleFlags & ACE_MSC) != 0) world->RemoveImage(host);
  }
  return result;
}

}  // namespace kvrtest
