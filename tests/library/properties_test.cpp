// Random histories: hosts take turns, each as a process that discovers and then makes some changes.
#include <rapidcheck.h>

#include "support/world.h"

using namespace kvrtest;

namespace {

const std::vector<std::string> kHosts = {"A", "B", "C", "D", "E", "F", "G", "H"};

struct Step {
  unsigned kind, host, parent, turn, fault;  // turn: the host that goes on, from 8: the same
  std::uint32_t count;
};

std::uint32_t Apply(const Step &step) {
  KVR_SYSTEM host = System(kHosts[step.host]);
  const std::string parent = Group(kHosts[step.parent]) != nullptr ? kHosts[step.parent] : "";
  std::uint32_t count = step.count;
  if (step.kind == 0) return KVR_RemoveServerFromACG(host);
  if (step.kind < 4) return KVR_AddServerToACG(host);
  if (step.kind < 7) return Create(parent, kHosts[step.host], count);
  if (step.kind < 8) return KVR_CreateAsgW(Group(parent), u"wide", host, &count, nullptr);
  return KVR_AddServerToAsg(Group(parent), host);
}

// No slot has two holders. Each but the MSC's is marked as a child by one other host, which has
// delegated to its holder what that one reserves.
void CheckSlots(const World &world) {
  std::map<std::uint32_t, std::string> holders;
  for (const auto &[host, bytes] : world->Images()) {
    const SaTable table = *world->Image(host);
    for (std::uint32_t own = 0; own < KVR_SLOT_COUNT; ++own) {
      if ((table.entries[own].access.roleFlags & ACE_SELF) == 0) continue;
      RC_ASSERT(holders.emplace(own, host).second);
      if ((table.entries[own].access.roleFlags & ACE_MSC) != 0) continue;
      unsigned pools = 0;
      for (const auto &[pool, poolBytes] : world->Images()) {
        const SaTable above = *world->Image(pool);
        if ((above.entries[own].access.roleFlags & ACE_CHILD) == 0) continue;
        ++pools;
        for (std::uint32_t n = 0; n < KVR_SLOT_COUNT; ++n)
          RC_ASSERT((table.entries[n].access.roleFlags & ACE_RESERVED) == 0 ||
                    (above.entries[n].access.roleFlags & ACE_DELEGATED) != 0);
      }
      RC_ASSERT(pools == 1);
    }
  }
}

void Live(const std::vector<Step> &history, bool faults) {
  const World world(kHosts);
  std::string actor = "A";
  const auto checkTurn = [&] {
    const std::string model = Model(!faults);  // a name that could not be stored is not reported
    world.As(actor);
    RC_ASSERT(Model(!faults) == model);
    CheckSlots(world);
  };
  world.As(actor);
  KVR_CreateKVR(nullptr);
  for (const char *host : {"B", "C", "D", "E"}) KVR_AddServerToACG(System(host));
  for (const Step &step : history) {
    if (step.turn < kHosts.size()) {
      checkTurn();
      world.As(actor = kHosts[step.turn]);
    }
    const fabric::ImageSet before = world->Images();
    if (faults && step.fault != 0) world->FailCall(step.fault);
    const std::uint32_t result = Apply(step);
    world->ClearFaults();
    const bool done = result == KVR_OK || result == KVR_ERR_RESERVED_COUNT_REDUCED;
    RC_ASSERT(done || world->Images() == before);
  }
  checkTurn();
}

TEST(Histories, LeaveTheModelThatTheTablesTell) {
  const auto below = [](unsigned limit) { return rc::gen::inRange(0u, limit); };
  const auto step =
      rc::gen::construct<Step>(below(12), below(8), below(8), below(24), below(10), below(7));
  const auto history = rc::gen::container<std::vector<Step>>(step);
  for (const bool faults : {false, true})
    EXPECT_TRUE(rc::check(faults ? "with single faults" : "without faults",
                          [&] { Live(*rc::gen::resize(60, history), faults); }));
}

}  // namespace
