// Random histories: hosts take turns, each as a process that discovers and then makes some changes,
// some of them with faults, while other hosts are away. What must hold after each is in trial.h.
#include "support/random_inputs.h"
#include "support/trial.h"

using namespace kvrtest;

namespace {

const std::vector<std::string> kHosts = {"A", "B", "C", "D", "E", "F", "G", "H"};

struct Step {
  unsigned kind, host, group, turn, away, fault, second, count;
};
const Row kLimits = {20, 8, 60, 20, 16, 10, 6, 7};

// The clients of all groups, "?" among them, and "" for none.
std::vector<std::string> Clients() {
  std::vector<std::string> clients = {""};
  kvr::AnyGroupBelow(kvr::g_topGroups, [&](kvr::GroupRecord &group) {
    KVR_SYSTEM client = KVR_GetAsgClient(&group);
    clients.emplace_back(client != nullptr ? client->discovered.systemName : "?");
    return false;
  });
  return clients;
}

// Whose turn it is: mostly that of the MSC, or of a host that holds a slot.
std::string Actor(const World &world, const Step &step) {
  const std::uint32_t roles[] = {ACE_MSC, ACE_MSC, ACE_BACKUP_MSC, ACE_SELF, ACE_SELF};
  const auto holders = step.turn < 5 ? Holders(world, roles[step.turn]) : kHosts;
  return holders.empty() ? "A" : holders[step.group % holders.size()];
}

// Whether a host out of sight, one that is away or the actor itself, serves a group's client or has
// its slot from it: deleting the group then leaves a grant behind, or gives the slot to another.
bool IsMissed(const World &world, const std::vector<std::string> &unseen,
              const std::string &client) {
  KVR_GROUP group = Group(client);
  if (group == nullptr || KVR_GetAsgClient(group) == nullptr) return false;
  const auto serves = [&](const std::string &host) {
    if (host.empty()) return false;
    const SaTable table = world->Image(host).value_or(SaTable{});
    return table.entries[group->client->saIndex].access.serveFlags != 0;
  };
  return std::ranges::any_of(unseen, serves) ||
         (KVR_GetChildAsgCount(group) == 0 && KVR_GetUsedIndexCount(group) != 0);
}

// In the order in which a step names them.
const std::vector<std::string> kFunctions = Words(
    "AddServerToACG RemoveServerFromACG CreateAsgA CreateAsgW AddServerToAsg AddServerToAsg "
    "RemoveServerFromAsg RenameAsgA RenameAsgW DeleteAsg ModifyReservedIndexCount AssignNewClient "
    "AddBackupMSC RemoveBackupMSC AssignNewMSC AssignNewMSC GenerateNewKeys EnableSwitchAccess "
    "SyncDiscovery DeleteKVR");

// One history over some of the kinds of change: all, or those of a set, which the first row tells.
// The stage that all begin from gives it something to work on. Returns the checksum of all tables
// in the end.
std::string Live(const Rows &history, bool faults) {
  const unsigned kinds = history[0][0] == 0 ? ~0u : history[0][1];
  const World world({"A 0=3 1=4 2=8 3=8 4=8 5=8", "B 1=1 2=14 3=18 4=10 5=10 s0",
                     "C 2=1 3=10 s0 s1", "D s0 s1 s2", "E s0 s1", "F 0=21 1=4 2=8 3=8 4=8 5=8 s0",
                     "G", "H"});
  std::string actor = "A", away;
  g_now = 1;
  world.As(actor);
  for (std::size_t i = 1; i < history.size(); ++i) {
    const Row &r = history[i];
    const Step step = {r[0], r[1], r[2], r[3], r[4], r[5], r[6], r[7]};
    if ((kinds >> step.kind & 1) == 0) continue;
    if (step.turn < 6) {
      if (!away.empty()) world->SetHostUp(away, true);
      for (const std::string &msc : Holders(world, ACE_MSC)) world.As(msc);  // and its backups are
      actor = Actor(world, step);                                            // up to date
      away = step.away < kHosts.size() && kHosts[step.away] != actor ? kHosts[step.away] : "";
      if (!away.empty()) world->SetHostUp(away, false);
      world.As(actor);
    }
    const std::vector<std::string> clients = Clients();
    const std::string group = clients[step.group % clients.size()];
    Change change = {kFunctions[step.kind], group, kHosts[step.host], step.count};
    if (step.kind == 15) change.host.clear();  // the MSC is passed over
    if (world->Images().empty()) change.function = "CreateKVR";
    // The rest of a configuration, or a table without one, is not what this is about.
    if (change.function == "DeleteKVR" && (!away.empty() || step.count > 1)) continue;
    if (change.function == "DeleteAsg" && IsMissed(world, {away, actor}, group)) continue;
    if (change.function == "EnableSwitchAccess" && !world->Image(actor)) continue;
    // An MSC that a client lets serve passes that on to its backups with the next push.
    const bool isMsc = std::ranges::count(Holders(world, ACE_MSC), change.host) != 0;
    if (change.function == "AddServerToAsg" && isMsc) continue;
    Try(world, actor, change, [&](const World &w) {
      if (faults && step.fault != 0) w->FailCall(step.fault);
      if (faults && step.fault != 0) w->FailCall(step.fault + step.second);
    });
  }
  std::uint64_t sum = kNoBytes;
  for (const auto &[host, image] : world->Images())
    for (const std::uint8_t byte : image) sum = Checksum(sum, byte);
  return fmt::format("{:016x}", sum);
}

TEST(Histories, KeepModelTablesAndSlotsTogether) {
  for (const bool faults : {false, true}) {
    ExpectForRandomInputs(faults ? "histories_with_faults" : "histories_without_faults",
                          {{2, 1u << kLimits[0]}, kLimits, 60},
                          [&](const Rows &history) { return Live(history, faults); });
  }
}

}  // namespace
