// What the C++ interface adds to C: the age of values, errors, names in UTF-8 and callables.
#include <thread>

#include "kvrapi/kvrapi.hpp"

#include "support/world.h"

using namespace kvrtest;
using kvrapi::Error, kvrapi::Session, std::tuple;
using Asg = kvrapi::Group;
using Host = kvrapi::System;

namespace {

// F stands below A; the client of slot 11 is missing, so D's group hangs below an Offline Client.
const std::vector<std::string> kTables = {"S s5 s10 s14",
                                          "D 12=1 s5",
                                          "F 14=1 s5 s10",
                                          "K 5=21 10=4",
                                          "A 10=1 11=14 12=18 14=14 15=10 s5",
                                          "M 5=3 10=4 11=8 12=8 14=8 15=8"};

Session Now() { return Session(Session::DeferDiscovery{}); }

Host Named(const std::string &name) {
  const std::vector<Host> hosts = Now().Members();
  return *std::ranges::find(hosts, System(name), &Host::Handle);
}

Asg Of(const std::string &client) {
  std::vector<Asg> groups = Now().Groups();
  std::size_t i = 0;
  for (; groups.at(i).Handle() != Group(client); ++i)
    for (const Asg &child : groups[i].Children()) groups.push_back(child);
  return groups[i];
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

// Whether each member refuses a stale value, itself or among the arguments.
template <class Value, class... Arguments, class... Members>
bool Refused(Value &value, const tuple<Arguments...> &arguments, Members... members) {
  const auto refuses = [&](auto member) {
    const auto call = [&](const auto &...given) { (void)std::invoke(member, value, given...); };
    return Outcome([&] { std::apply(call, arguments); }) == "5007!";
  };
  return (refuses(members) && ...);
}

TEST(CppInterface, KnowsAndRefusesWhatHasBecomeStale) {
  const tuple<const char *, std::function<void()>, const char *, const char *> cases[] = {
      // hosts at which a function fails, act, outcome, stale groups and "*" for hosts
      {"", [] { Now().Discover(); }, "0 ", "*A?DF"},
      {"", [] { Now().HandOver(Named("K")); }, "0 ", "*A?DF"},
      {"K ReadAccessControlTable", [] { Now().HandOver(Named("K")); }, "5019 ", ""},
      {"", [] { Of("D").Delete(); }, "0 ", "?D"},
      {"F WriteAccessControlTable", [] { Of("F").Delete(); }, "5019 ", ""},
      {"S WriteAccessControlTable", [] { Of("F").Delete(); }, "5008 S", "F"},
      {"SA WriteAccessControlTable", [] { Of("F").Delete(); }, "5019 S", "F"},
      {"", [] { Now().DeleteConfiguration(); }, "0 ", "A?DF"},
      {"S RemoveSaTable", [] { Now().DeleteConfiguration(); }, "5008 S", ""},
      {"M RemoveSaTable", [] { Now().DeleteConfiguration(); }, "5031 ", "A?DF"}};
  for (const auto &[faults, act, outcome, stale] : cases) {
    const World world(kTables);
    world.Start("M");
    Session s;
    const std::vector<Asg> groups = {Of("A"), Of("?"), Of("D"), Of("F")};
    const Host host = Named("S");
    for (const char *at = faults; *at > ' '; ++at)
      world->AddFault({{*at}, {}, "TQ_" + Words(faults)[1], 1, {}});
    EXPECT_EQ(Outcome(act), outcome);
    EXPECT_TRUE(s.TakeFailedSystems().empty() && world.Calls(true) != "");
    std::string gone = host.IsStale() ? "*" : "";
    for (const Asg &g : groups) {
      if (!g.IsStale()) continue;
      gone += "A?DF"[&g - groups.data()];
      EXPECT_TRUE(Refused(g, tuple(), &Asg::Name, &Asg::IsOffline, &Asg::Client, &Asg::Servers,
                          &Asg::Slots, &Asg::Children, &Asg::AvailableServers, &Asg::Delete) &&
                  Refused(g, tuple(host), &Asg::HasClientBelow, &Asg::HasServerBelow,
                          &Asg::AddServer, &Asg::RemoveServer, &Asg::SetClient) &&
                  Refused(g, tuple("x"), &Asg::Rename) && Refused(g, tuple(0u), &Asg::SetReserve) &&
                  Refused(g, tuple("x", host, 0u), &Asg::CreateGroup));
    }
    const bool refused = Refused(host, tuple(), &Host::Name, &Host::WideName, &Host::IsInAcg,
                                 &Host::HoldsSlot, &Host::CanDiscoverAll);
    EXPECT_TRUE(refused == host.IsStale() &&
                (!refused || Refused(s, tuple(host), &Session::AddToAcg, &Session::HandOver)));
    EXPECT_EQ(gone + world.Calls(true), stale);
  }
  const World world(kTables);
  world.Start("M");
  Session s;
  for (std::vector<Asg> deleted = {Of("F")}; deleted.size() < 9; deleted.push_back(Of("F"))) {
    deleted.back().Delete();
    EXPECT_EQ(Of("A").CreateGroup("f", Named("F"), 300).reserved, 1u);
    EXPECT_TRUE(std::ranges::all_of(deleted, &Asg::IsStale)) << "though one has its place";
  }
}

TEST(CppInterface, NamesAllHostsThatFailedOnce) {
  std::vector<std::string> lines = {"M 5=3"};
  for (int i = 100; i < 230; ++i) lines.push_back(fmt::format("H{} s5", i));
  const World world(lines);
  world.Start("M");
  Session s;
  world->AddFault({"", {}, "TQ_WriteKeyTable", 1, 129});
  EXPECT_EQ(Outcome([&] { s.RenewKeys(); }).size(), 5u + 129 * 4);
  EXPECT_EQ(s.TakeFailedSystems().size(), 0u);
  EXPECT_STREQ(Error("a", 5002).what(),
               "a: this host has no adapter (5002 KVR_ERR_NO_LOCAL_ADAPTER)");
}

TEST(CppInterface, SpeaksUtf8) {
  const World world(kTables);
  world.Start("M");
  Session s;
  const std::string lock = "\U0001F512", locks = lock + lock + lock + lock + lock, x(21, 'x');
  for (const std::string &name : Words("a \u00e9t\u00e9 \u0416" + locks + " b " + locks + x)) {
    Of("F").Rename(name);
    (void)s.CreateGroup(name, Named("S"));
    for (int round = 0; round < 2; ++round, s.Discover())
      EXPECT_EQ(Of("F").Name() + Of("S").Name(), name + name);
    Of("S").Delete();
  }
  const std::string bad = "\xff \xed\xa0\x80 \xc0\x80 \xf4\x90\x80\x80 \xd0 ", zero("a\0b", 3);
  for (const std::string &name : Words(bad + zero + " x" + locks + x + " " + x + x))
    EXPECT_EQ(Outcome([&] { (void)s.CreateGroup(name, Named("S")); }), "5015 ") << name;
  const Host host = Named("S");
  auto &record = host.Handle()->discovered;
  const std::string n(32, 'n'), none(32, '\0'), wideName = "\u0416" + lock + "\uFFFD";
  std::ranges::copy(std::u16string(u"\u0416\U0001F512\xDD12"), record.systemNameW);
  for (const auto &[text, name] : {std::pair(n, n), {"\xe9" + none, "\u00e9"}, {none, wideName}}) {
    std::copy_n(text.data(), 32, record.systemName);
    EXPECT_EQ(host.Name() + host.WideName(), name + wideName);
  }
}

TEST(CppInterface, CallsTheLastCallableAskedFor) {
  for (const bool known : {true, false}) {
    const World world(kTables, 1, known);
    world.Start("M");
    Session s(Session::DeferDiscovery{});
    std::atomic<int> first = 0, last = 0, asked = known;
    std::vector<Asg> given;
    std::thread::id thread;
    s.Discover([&] { ++first; });
    s.Discover([&] {
      thread = std::this_thread::get_id();
      ++last;
      for (int i = 0; !asked || i < 999; ++i) std::this_thread::yield();
      if (s.HasDiscovered()) given = s.Groups();
    });
    while (last == 0) std::this_thread::yield();
    asked = true;
    s.Discover();  // while the last one is still at work
    EXPECT_TRUE(given.size() == 1 && given[0].IsStale() && s.HasDiscovered());
    EXPECT_TRUE((thread == std::this_thread::get_id()) == known && first == known && last == 1);
  }
}

}  // namespace
