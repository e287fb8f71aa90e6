// Every change: what becomes of the tables, and the fault loop, with every outside call that it
// makes failing: once, once together with each later one (so that taking it back fails too), and
// from then on.
#include "support/trial.h"

using namespace kvrtest;

// A has a child group, D none, and U no part; K is the backup MSC.
const std::vector<std::string> kTables = {"M 5=3 10=4 11=8 12=8 13=8 14=4 15=8 250=1 s246",
                                          "A 10=1 11=14 12=18 13=10 s5",
                                          "B 11=1 12=10 s5 s10",
                                          "C s5 s10",
                                          "D 14=1 15=10 s5",
                                          "K 5=21 10=4 11=8 12=8 13=8 14=4 15=8 250=1 s5 s246",
                                          "S s5",
                                          "T s5 s10 s11 s14",
                                          "U"};

TEST(Faults, LeaveEveryChangeUndoneOrDone) {
  const World lone({"U", "S", "M"}), world(kTables);
  g_now = 1;
  world.As("M");
  KVR_GenerateNewKeys();
  const std::tuple<const char *, Change, const char *> changes[] = {
      // the host that makes it, what it makes, and what becomes of the tables
      {"U", {"CreateKVR"}, "U 239=3 other keys"},
      {"M", {"DeleteKVR"}, "A gone B gone C gone D gone K gone M gone S gone T gone"},
      {"M", {"GenerateNewKeys"}, "A keys B keys C keys D keys K keys M keys S keys T keys"},
      {"M", {"SyncDiscovery"}, ""},
      {"M", {"AddServerToACG", "", "U"}, "U s5=1 s246=1 keys"},
      {"M", {"RemoveServerFromACG", "", "T"}, "T gone"},
      {"M", {"EnableSwitchAccess", "", "", 0}, "K s246=0 M s246=0"},
      {"M",
       {"EnableSwitchAccess", "", "", 2},
       "A s246=1 B s246=1 C s246=1 D s246=1 S s246=1 T s246=1"},
      {"M", {"AddBackupMSC", "", "S"}, "S 5=21 10=4 11=8 12=8 13=8 14=4 15=8 s246=1 250=1"},
      {"M",
       {"AddBackupMSC", "", "U"},
       "U 5=21 s5=1 10=4 11=8 12=8 13=8 14=4 15=8 s246=1 250=1 keys"},
      {"M", {"RemoveBackupMSC", "", "K"}, "K 5=0 10=0 11=0 12=0 13=0 14=0 15=0"},
      {"M", {"AssignNewMSC", "", "K"}, "K 5=3 s5=0 M 5=0 s5=1 10=0 11=0 12=0 13=0 14=0 15=0"},
      {"K", {"AssignNewMSC"}, "K 5=3 s5=0 M gone"},
      {"M", {"CreateAsgA", "", "S", 2}, "K 0=4 1=8 2=8 M 0=4 1=8 2=8 S 0=1 1=10 2=10"},
      {"M", {"CreateAsgA", "A", "C"}, "A 13=14 C 13=1"},
      {"A", {"CreateAsgW", "", "C"}, "A 13=14 C 13=1 unnamed"},
      {"M", {"CreateAsgW", "A", "C"}, "A 13=14 C 13=1 unnamed"},
      {"M", {"RenameAsgA", "B", "x"}, "B named"},
      {"M", {"RenameAsgW", "A"}, "A unnamed"},
      {"M", {"DeleteAsg", "D"}, "D 14=0 15=0 unnamed K 14=0 15=0 M 14=0 15=0 T s14=0"},
      {"M", {"DeleteAsg", "B"}, "A 11=10 12=10 B 11=0 12=0 unnamed T s11=0"},
      {"A", {"DeleteAsg", "B"}, "A 11=10 12=10 B 11=0 12=0 unnamed T s11=0"},
      {"M", {"AddServerToAsg", "D", "S"}, "S s14=1"},
      {"M", {"RemoveServerFromAsg", "A", "C"}, "C s10=0"},
      {"M", {"ModifyReservedIndexCount", "D", "", 3}, "D 0=10 1=10 K 0=8 1=8 M 0=8 1=8"},
      {"M", {"ModifyReservedIndexCount", "D", "", 0}, "D 15=0 K 15=0 M 15=0"},
      {"M", {"ModifyReservedIndexCount", "B", "", 3}, "A 13=18 B 13=10"},
      {"A", {"ModifyReservedIndexCount", "B", "", 0}, "A 12=10 B 12=0"},
      {"M",
       {"AssignNewClient", "A", "C"},
       "A 10=0 11=0 12=0 13=0 unnamed C 10=1 s10=0 11=14 12=18 13=10 named"},
      {"M", {"AssignNewClient", "B", "C"}, "B 11=0 12=0 unnamed C 11=1 12=10 named"}};
  for (const auto &[host, change, news] : changes) {
    const World &place = *host == 'U' ? lone : world;
    const fabric::ImageSet images = place->Images();
    const auto survive = [&, host = host](const std::function<void(const World &)> &addFaults) {
      place->RestoreImages(images);
      place.As(host);
      return Try(place, host, change, addFaults);
    };
    place.Use();
    place.As(host);
    g_now = 1'000'000'001;  // from which U's slot is drawn
    Make(place, change);
    EXPECT_EQ(News(place, images), news) << change.function;
    const std::size_t calls = survive([](auto &) {});
    for (std::uint32_t first = 1; first <= calls; ++first) {
      survive([=](auto &w) { w->FailFromCall(first); });
      for (std::uint32_t second = first; second < first + 9; ++second)
        survive([=](auto &w) { w->FailCall(first), w->FailCall(second); });
    }
    place->RestoreImages(images);
  }
}
