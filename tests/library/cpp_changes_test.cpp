// The changes and lists of the C++ interface, held against those of the C interface.
#include <ranges>

#include "kvrapi/kvrapi.hpp"

#include "support/trial.h"

using namespace kvrtest;
using kvrapi::Error, kvrapi::Session;
using Asg = kvrapi::Group;
using Host = kvrapi::System;

namespace {

// F stands below A; the client of slot 11 is missing, so D's group hangs below an Offline Client.
const std::vector<std::string> kTables = {"M 5=3 10=4 11=8 12=8 13=4 14=8 15=8 s246",
                                          "A 10=1 11=14 12=18 14=14 15=10 s5",
                                          "D 12=1 s5",
                                          "E 13=1 s5 s10",
                                          "F 14=1 s5 s10",
                                          "K 5=21 10=4 13=4",
                                          "S s5 s10 s13 s14",
                                          "U"};

Session Now() { return Session(Session::DeferDiscovery{}); }

Host Named(const std::string &name) {
  const std::vector<Host> hosts = name == "U" ? Now().Outsiders() : Now().Members();
  return *std::ranges::find(hosts, System(name), &Host::Handle);
}

Asg Of(const std::string &client) {
  std::vector<Asg> groups = Now().Groups();
  std::size_t i = 0;
  for (; groups.at(i).Handle() != Group(client); ++i)
    for (const Asg &child : groups[i].Children()) groups.push_back(child);
  return groups[i];
}

std::string Text(const std::vector<Host> &hosts) {
  return fmt::format("{}", fmt::join(hosts | std::views::transform(&Host::Name), ""));
}

// What an act throws: the code, "!" for a stale value, and the hosts that failed.
std::string Outcome(const std::function<void()> &act) {
  try {
    return act(), "0 ";
  } catch (const Error &error) {
    std::string text = std::to_string(error.Code()) + (error.IsStale() ? "!" : " ");
    for (const auto &[host, name] : error.FailedHosts()) text += name;
    return text;
  }
}

TEST(CppChanges, MakesTheChangesOfTheCInterfaceWhateverCallFails) {
  const std::tuple<std::string, Change, std::function<void()>> cases[] = {
      {"U", {"CreateKVR"}, [] { EXPECT_EQ(Now().CreateConfiguration(), kvr::g_localIndex); }},
      {"M", {"DeleteKVR"}, [] { Now().DeleteConfiguration(); }},
      {"M", {"GenerateNewKeys"}, [] { Now().RenewKeys(); }},
      {"M", {"SyncDiscovery"}, [] { Now().Synchronize(); }},
      {"M", {"EnableSwitchAccess", "", "", 1}, [] { Now().SwitchAccess(true); }},
      {"M", {"EnableSwitchAccess", "", "", 2}, [] { Now().RewriteSwitchAccess(true); }},
      {"M", {"EnableSwitchAccess", "", "", 0}, [] { Now().RewriteSwitchAccess(false); }},
      {"M", {"AddServerToACG", "", "U"}, [] { Now().AddToAcg(Named("U")); }},
      {"M", {"RemoveServerFromACG", "", "S"}, [] { Now().RemoveFromAcg(Named("S")); }},
      {"M", {"AddBackupMSC", "", "U"}, [] { Now().AddBackupMsc(Named("U")); }},
      {"M", {"RemoveBackupMSC", "", "K"}, [] { Now().RemoveBackupMsc(Named("K")); }},
      {"M", {"AssignNewMSC", "", "K"}, [] { Now().HandOver(Named("K")); }},
      {"M", {"AssignNewMSC"}, [] { Now().TakeOver(); }},
      {"M", {"CreateAsgW", "", "S", 9}, [] { (void)Now().CreateGroup("\u0416", Named("S"), 9); }},
      {"M", {"CreateAsgA", "A", "S"}, [] { (void)Of("A").CreateGroup("s", Named("S")); }},
      {"M", {"AddServerToAsg", "A", "D"}, [] { Of("A").AddServer(Named("D")); }},
      {"M", {"RemoveServerFromAsg", "A", "S"}, [] { Of("A").RemoveServer(Named("S")); }},
      {"M", {"ModifyReservedIndexCount", "A", "", 9}, [] { (void)Of("A").SetReserve(9); }},
      {"M", {"AssignNewClient", "E", "S"}, [] { Of("E").SetClient(Named("S")); }},
      {"M", {"DeleteAsg", "E"}, [] { Of("E").Delete(); }}};
  const World world(kTables);
  const fabric::ImageSet before = world->Images();
  for (const auto &[host, change, act] : cases) {
    std::string calls = "-", told[2];
    for (std::uint32_t faulty = 1; faulty <= Words(calls).size() + 1; ++faulty) {
      for (const std::size_t cpp : {0, 1}) {
        world->RestoreImages(before);
        world.Start(host);
        Session session;
        world.Calls();
        world->FailCall(faulty);
        std::uint32_t code = 0;
        told[cpp] = Outcome([&] { cpp != 0 ? act() : (void)(code = Make(world, change)); });
        if (code != KVR_OK) told[cpp] = fmt::format("{} ", code);
        world->ClearFaults();
        calls = world.Calls();
        told[cpp] += Text(session.TakeFailedSystems()) + " " + calls + "\n" + Model();
        told[cpp] += News(world, before);
      }
      EXPECT_EQ(told[0], told[1]) << change.function << " on " << host;
    }
  }
}

std::string Drawn(const std::vector<Asg> &groups) {
  std::string text;
  for (const Asg &g : groups)
    text +=
        fmt::format(" {}={}{{{}}}<{}>{}/{}{}", g.Name(), g.IsOffline() ? "?" : g.Client()->Name(),
                    Text(g.Servers()), Text(g.AvailableServers()), g.Slots().free, g.Slots().used,
                    Drawn(g.Children()));
  return text;
}

TEST(CppChanges, ListsWhatTheTablesSay) {
  for (const auto &[host, told] :
       {std::pair("M",
                  "11101 239/7 ADEFKS K U0  a=A{EFS}<D>1/3 Offline Client=?{}<>0/0 d=D{}<>0/0 "
                  "f=F{S}<E>0/0 e=E{S}<ADF>0/00 "),
        {"A", "11000 1/3 DEFKMS K 5000  Offline Client=?{}<>0/0 d=D{}<>0/0 f=F{S}<DEKM>0/00 "},
        {"K", "11010 0/0 ADEFMS  5000 5024 "}}) {
    const World world(kTables);
    world.Start(host);
    const Session s;
    auto text = fmt::format("{:d}{:d}{:d}{:d}{:d} {}/{} {} {} ", s.IsSecured(), s.HoldsSlot(),
                            s.IsMsc(), s.IsBackupMsc(), s.IsSwitchAccessOn(), s.Slots().free,
                            s.Slots().used, Text(s.Members()), Text(s.BackupMscs()));
    text += Outcome([&] { text += Text(s.Outsiders()); });
    text += Outcome([&] { text += Drawn(s.Groups()); });
    EXPECT_EQ(text, told);
  }
}

}  // namespace
