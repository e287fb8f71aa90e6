// The fault loop: every change, with every outside call failing that it makes: once, once together
// with each later one (so that taking it back fails too), and from then on.
#include "support/trial.h"

using namespace kvrtest;

namespace {

// A has a child group, D none, and U no part; K is the backup MSC.
const std::vector<std::string> kTables = {"M 5=3 10=4 11=8 12=8 13=8 14=4 15=8",
                                          "A 10=1 11=14 12=18 13=10 s5",
                                          "B 11=1 12=10 s5 s10",
                                          "C s5 s10",
                                          "D 14=1 15=10 s5",
                                          "K 5=21 10=4 11=8 12=8 13=8 14=4 15=8 s5",
                                          "S s5",
                                          "T s5 s10 s11 s14",
                                          "U"};

std::uint32_t Reserve(const char *client, std::uint32_t count) {
  return KVR_ModifyReservedIndexCount(Group(client), &count);
}

std::uint32_t CreateWide(const char *parent, const char *client) {
  return KVR_CreateAsgW(Group(parent), u"\u0416", System(client), nullptr, nullptr);
}

TEST(Faults, LeaveEveryChangeUndoneOrDone) {
  const World world(kTables), lone({"U", "S"});
  const struct {
    const char *host;  // that makes it
    Change change;
  } changes[] = {
      {"U", {"CreateKVR", [] { return KVR_CreateKVR(nullptr); }}},
      {"M", {"DeleteKVR", KVR_DeleteKVR}},
      {"M", {"GenerateNewKeys", KVR_GenerateNewKeys}},
      {"M", {"SyncDiscovery", KVR_SyncDiscovery}},
      {"M", {"AddServerToACG", [] { return KVR_AddServerToACG(System("U")); }}},
      {"M", {"RemoveServerFromACG", [] { return KVR_RemoveServerFromACG(System("T")); }}},
      {"M",
       {"EnableSwitchAccess", [] { return KVR_EnableSwitchAccess(1); },
        [] { return KVR_EnableSwitchAccess(0), KVR_EnableSwitchAccess(1); }}},
      {"M", {"AddBackupMSC", [] { return KVR_AddBackupMSC(System("S")); }}},
      {"M", {"AddBackupMSC", [] { return KVR_AddBackupMSC(System("U")); }}},
      {"M", {"RemoveBackupMSC", [] { return KVR_RemoveBackupMSC(System("K")); }}},
      {"M", {"AssignNewMSC", [&] { return AssignNewMsc(world, System("K")); }}},
      {"K", {"AssignNewMSC", [&] { return AssignNewMsc(world, nullptr); }}},
      {"M", {"CreateAsg", [] { return Create("", "S", 2); }}},
      {"M", {"CreateAsg", [] { return Create("A", "C", 0); }}},
      {"A", {"CreateAsg", [] { return CreateWide("", "C"); }}},
      {"M", {"CreateAsg", [] { return CreateWide("A", "C"); }}},
      {"M", {"RenameAsg", [] { return KVR_RenameAsgA(Group("B"), "x"); }}},
      {"M", {"RenameAsg", [] { return KVR_RenameAsgW(Group("A"), u"\u0416"); }}},
      {"M", {"DeleteAsg", [] { return KVR_DeleteAsg(Group("D")); }}},
      {"M", {"DeleteAsg", [] { return KVR_DeleteAsg(Group("B")); }}},
      {"A", {"DeleteAsg", [] { return KVR_DeleteAsg(Group("B")); }}},
      {"M", {"AddServerToAsg", [] { return KVR_AddServerToAsg(Group("D"), System("S")); }}},
      {"M",
       {"RemoveServerFromAsg", [] { return KVR_RemoveServerFromAsg(Group("A"), System("C")); }}},
      {"M", {"ModifyReservedIndexCount", [] { return Reserve("D", 3); }}},
      {"M", {"ModifyReservedIndexCount", [] { return Reserve("D", 0); }}},
      {"M", {"ModifyReservedIndexCount", [] { return Reserve("B", 3); }}},
      {"A", {"ModifyReservedIndexCount", [] { return Reserve("B", 0); }}},
      {"M", {"AssignNewClient", [] { return KVR_AssignNewClient(Group("A"), System("S")); }}},
      {"M", {"AssignNewClient", [] { return KVR_AssignNewClient(Group("B"), System("C")); }}}};
  for (const auto &[host, change] : changes) {
    const World &place = *host == 'U' ? lone : world;
    const fabric::ImageSet images = place->Images();
    const auto survive = [&, host = host](const std::function<void(const World &)> &addFaults) {
      place.Use();
      place.As(host);
      const std::size_t calls = Try(place, host, change, addFaults);
      place->RestoreImages(images);
      return calls;
    };
    const std::size_t calls = survive([](auto &) {});
    for (std::uint32_t first = 1; first <= calls; ++first) {
      survive([=](auto &w) { w->FailFromCall(first); });
      for (std::uint32_t second = first; second < first + 9; ++second)
        survive([=](auto &w) { w->FailCall(first), w->FailCall(second); });
    }
  }
}

}  // namespace
