// Random histories: hosts take turns, each as a process that discovers and then makes some changes,
// some of them with faults, while other hosts are away. What must hold after each is in trial.h.
#include <rapidcheck.h>

#include "support/trial.h"

using namespace kvrtest;

namespace {

const std::vector<std::string> kHosts = {"A", "B", "C", "D", "E", "F", "G", "H"};

struct Step {
  unsigned kind, host, group, turn, away, fault, second;
  std::uint32_t count;
};

std::ostream &operator<<(std::ostream &out, const Step &s) {
  return out << fmt::format("\n{{{}, {}, {}, {}, {}, {}, {}, {}}}", s.kind, s.host, s.group, s.turn,
                            s.away, s.fault, s.second, s.count);
}

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

// The hosts whose tables set a flag at some slot.
std::vector<std::string> Holders(const World &world, std::uint32_t flag) {
  std::vector<std::string> holders;
  for (const std::string &host : kHosts) {
    const auto table = world->Image(host).value_or(SaTable{});
    if (std::ranges::any_of(table.entries, [&](const SaEntry &entry) {
          return (entry.access.roleFlags & flag) != 0;
        }))
      holders.push_back(host);
  }
  return holders;
}

// Whose turn it is: mostly that of the MSC, or of a host that holds a slot.
std::string Actor(const World &world, const Step &step) {
  const std::uint32_t roles[] = {ACE_MSC, ACE_MSC, ACE_BACKUP_MSC, ACE_SELF, ACE_SELF};
  const auto holders = step.turn < 5 ? Holders(world, roles[step.turn]) : kHosts;
  return holders.empty() ? "A" : holders[step.group % holders.size()];
}

// Whether a host that is away serves a group's client, or has its slot from it: deleting the group
// then leaves a grant behind, or gives the slot to another.
bool IsMissed(const World &world, const std::string &away, const std::string &client) {
  KVR_GROUP group = Group(client);
  if (away.empty() || group == nullptr || KVR_GetAsgClient(group) == nullptr) return false;
  const SaTable table = world->Image(away).value_or(SaTable{});
  return table.entries[group->client->saIndex].access.serveFlags != 0 ||
         (KVR_GetChildAsgCount(group) == 0 && KVR_GetUsedIndexCount(group) != 0);
}

// In the order in which a step names them.
std::vector<Change> Changes(const World &world, const Step &step, const std::string &group) {
  const std::string host = kHosts[step.host];
  const std::uint32_t count = step.count;
  const auto create = [=](const KVR_WCHAR *wide) {
    std::uint32_t reserve = count;
    if (wide == nullptr) return Create(group, host, reserve);
    return KVR_CreateAsgW(Group(group), wide, System(host), &reserve, nullptr);
  };
  const auto reserve = [=] {
    std::uint32_t wanted = count;
    return KVR_ModifyReservedIndexCount(Group(group), &wanted);
  };
  return {
      {"AddServerToACG", [=] { return KVR_AddServerToACG(System(host)); }},
      {"RemoveServerFromACG", [=] { return KVR_RemoveServerFromACG(System(host)); }},
      {"CreateAsg", [=] { return create(nullptr); }},
      {"CreateAsg", [=] { return create(u"wide"); }},
      {"AddServerToAsg", [=] { return KVR_AddServerToAsg(Group(group), System(host)); }},
      {"AddServerToAsg", [=] { return KVR_AddServerToAsg(Group(group), System(host)); }},
      {"RemoveServerFromAsg", [=] { return KVR_RemoveServerFromAsg(Group(group), System(host)); }},
      {"RenameAsg", [=] { return KVR_RenameAsgA(Group(group), host.c_str()); }},
      {"RenameAsg", [=] { return KVR_RenameAsgW(Group(group), u"\u0416"); }},
      {"DeleteAsg", [=] { return KVR_DeleteAsg(Group(group)); }},
      {"ModifyReservedIndexCount", reserve},
      {"AssignNewClient", [=] { return KVR_AssignNewClient(Group(group), System(host)); }},
      {"AddBackupMSC", [=] { return KVR_AddBackupMSC(System(host)); }},
      {"RemoveBackupMSC", [=] { return KVR_RemoveBackupMSC(System(host)); }},
      {"AssignNewMSC", [=, &world] { return AssignNewMsc(world, System(host)); }},
      {"AssignNewMSC", [&world] { return AssignNewMsc(world, nullptr); }},
      {"GenerateNewKeys", KVR_GenerateNewKeys},
      {"EnableSwitchAccess", [=] { return KVR_EnableSwitchAccess(count % 3); },
       [=] { return KVR_EnableSwitchAccess(count + 3), KVR_EnableSwitchAccess(count % 3); }},
      {"SyncDiscovery", KVR_SyncDiscovery},
      {"DeleteKVR", KVR_DeleteKVR},
      {"CreateKVR", [] { return KVR_CreateKVR(nullptr); }}};
}

// One history over some of the kinds of change. The stage that all begin from gives it something to
// work on.
void Live(const std::vector<Step> &history, std::uint32_t kinds, bool faults) {
  const World world(kHosts);
  std::string actor = "A", away;
  world.As(actor);
  KVR_CreateKVR(nullptr);
  for (const char *host : {"B", "C", "D", "E", "F"}) KVR_AddServerToACG(System(host));
  Create("", "B", 4);
  for (const char *host : {"C", "D", "E"}) KVR_AddServerToAsg(Group("B"), System(host));
  Create("B", "C", 1);
  KVR_AddServerToAsg(Group("C"), System("D"));
  KVR_AddBackupMSC(System("F"));
  for (const Step &step : history) {
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
    const std::vector<Change> changes = Changes(world, step, group);
    const Change &change = world->Images().empty() ? changes.back() : changes[step.kind];
    // The rest of a configuration, or a table without one, is not what this is about.
    if (change.name == "DeleteKVR" && (!away.empty() || step.count > 1)) continue;
    if (change.name == "DeleteAsg" && IsMissed(world, away, group)) continue;
    if (change.name == "EnableSwitchAccess" && !world->Image(actor)) continue;
    Try(world, actor, change, [&](const World &w) {
      if (faults && step.fault != 0) w->FailCall(step.fault);
      if (faults && step.fault != 0) w->FailCall(step.fault + step.second);
    });
  }
}

TEST(Histories, KeepModelTablesAndSlotsTogether) {
  const auto below = [](unsigned limit) {
    return rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0u, limit));
  };
  const auto step = rc::gen::construct<Step>(below(20), below(8), below(60), below(20), below(16),
                                             below(10), below(6), below(7));
  const auto history = rc::gen::resize(60, rc::gen::container<std::vector<Step>>(step));
  for (const bool faults : {false, true}) {
    EXPECT_TRUE(rc::check(faults ? "with faults" : "without faults", [&] {
      const bool all = *rc::gen::arbitrary<bool>();
      const std::uint32_t kinds = all ? ~0u : *rc::gen::arbitrary<std::uint32_t>();
      Live(*history, kinds, faults);
    }));
  }
}

}  // namespace
