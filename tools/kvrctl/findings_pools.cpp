// The slots on their way down the groups: what a pool host has given out is what its children have,
// and the other way round.
#include <algorithm>

#include <fmt/format.h>

#include "findings.h"
#include "findings_advice.h"
#include "paths.h"

namespace kvrctl {
namespace {

std::vector<std::uint32_t> SlotsWhere(const auto &holds) {
  std::vector<std::uint32_t> slots;
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    if (holds(slot)) slots.push_back(slot);
  }
  return slots;
}

std::string NextForLost(const View &view, const Member &pool) {
  if (view.mscs.empty()) return AwaitMsc(view);
  if (!view.survey.excluded.empty()) return AwaitMissing(view);
  const std::string first = view.unread.empty() ? "" : WhereMissing(view) + " ";
  if (pool.msc) {
    return first +
           "Where the client is gone for good, no command frees its slots: they stay taken until "
           "the configuration is made anew with `kvrctl destroy` and `kvrctl create`.";
  }
  if (!view.HasParent(pool)) {
    return view.unread.empty() ? RemovalByHand({pool.host->name}) : AwaitMissing(view);
  }
  return first +
         fmt::format(
             "Where the client is gone for good, delete the groups below that of {}, and "
             "then {} that one too with {}: it gives its slots back.",
             pool.host->name, OnMscWithin(view),
             Command({"kvrctl", "group", "delete", "--force"}, {ClientPath(pool.host->name)}));
}

void CheckLost(const View &view, Findings &findings) {
  for (const Member &pool : view.members) {
    std::vector<std::uint32_t> lost = pool.lostClients;
    lost.insert(lost.end(), pool.lostReserve.begin(), pool.lostReserve.end());
    if (lost.empty()) continue;
    std::sort(lost.begin(), lost.end());
    lost.erase(std::unique(lost.begin(), lost.end()), lost.end());
    const std::string &name = pool.host->name;
    findings.push_back({"SLOT_LOST",
                        {name},
                        lost,
                        fmt::format("{} has given out {}, and no table that can be read has {}.",
                                    name, SlotText(lost), lost.size() == 1 ? "it" : "them"),
                        "The client was not found, or a change broke off between the tables of the "
                        "two; nobody else can get the slots.",
                        NextForLost(view, pool)});
  }
}

// Whether a client that no member has as its child must be one that was forgotten: not below a
// client that was not found, nor in the place of an MSC that can't be read.
bool IsForgotten(const View &view, const Member &client) {
  if (!client.slot || client.msc || client.backup) return false;
  const SlotMarks &marks = view.slots[*client.slot];
  if (!marks.parents.empty() || marks.lost) return false;
  if (std::any_of(marks.holders.begin(), marks.holders.end(),
                  [](const Member *holder) { return holder->msc; })) {
    return false;
  }
  return !view.mscs.empty() || !marks.reservers.empty();
}

std::string NextForForgotten(const View &view, const Member &client) {
  if (view.mscs.empty()) return AwaitMsc(view);
  const std::string &name = client.host->name;
  const auto &delegators = view.slots[*client.slot].delegators;
  const bool deletable =
      std::any_of(delegators.begin(), delegators.end(), [](const Member *one) { return one->msc; });
  if (!deletable) return RemovalByHand({name});
  const bool above =
      !SlotsWhere([&](std::uint32_t slot) { return client.Has(ACE_CHILD, slot); }).empty();
  return fmt::format(
      "{} {}run {}, and create the group again.", OnMsc(view),
      above ? "delete the groups below that of " + name + ", the lowest first, then " : "",
      Command({"kvrctl", "group", "delete"}, {ClientPath(name)}));
}

void CheckForgotten(const View &view, Findings &findings) {
  for (const Member &client : view.members) {
    if (!IsForgotten(view, client)) continue;
    const std::string &name = client.host->name;
    const auto slots =
        SlotsWhere([&](std::uint32_t slot) { return client.Has(ACE_SELF | ACE_RESERVED, slot); });
    findings.push_back(
        {"CHILD_UNKNOWN",
         {name},
         slots,
         fmt::format("{} holds slot {}, but no member has that slot's client as its child.", name,
                     *client.slot),
         "The creation of its group broke off, or the group was deleted while this host was away: "
         "the slot counts as free above it, and another client may get it too.",
         NextForForgotten(view, client)});
  }
}

// Whether a member has the slot in a reserve that nobody gave it. Those above a client without a
// parent are not known.
bool IsUngiven(const View &view, const Member &member, std::uint32_t slot) {
  if (!member.Has(ACE_RESERVED, slot) || member.msc || member.backup) return false;
  if (!member.slot) return true;
  const auto &parents = view.slots[*member.slot].parents;
  return !parents.empty() &&
         std::none_of(parents.begin(), parents.end(),
                      [slot](const Member *parent) { return parent->Has(ACE_DELEGATED, slot); });
}

void CheckUngiven(const View &view, Findings &findings) {
  for (const Member &member : view.members) {
    const auto slots =
        SlotsWhere([&](std::uint32_t slot) { return IsUngiven(view, member, slot); });
    if (slots.empty()) continue;
    const std::string &name = member.host->name;
    std::vector<std::string> hosts = {name};
    if (member.slot) hosts.push_back(view.slots[*member.slot].parents.front()->host->name);
    findings.push_back(
        {"SLOT_NOT_DELEGATED", hosts, slots,
         member.slot
             ? fmt::format("{} has {} in its reserve, but {}, the host above, has not given "
                           "{} to it.",
                           name, SlotText(slots), hosts.back(), slots.size() == 1 ? "it" : "them")
             : fmt::format("{} has {} in a reserve, but no slot of its own.", name,
                           SlotText(slots)),
         "Two clients may get the same slot: one from each.",
         member.slot ? ReserveAnew(view, {&member}) : Readmission(view, member)});
  }
}

// The members above, up to where they are known; the last is an MSC where all of them are.
std::vector<const Member *> AboveOf(const View &view, const Member &client) {
  std::vector<const Member *> above;
  const Member *at = &client;
  while (at->slot && !at->msc && above.size() < KVR_SLOT_COUNT) {
    const auto &parents = view.slots[*at->slot].parents;
    if (parents.empty()) break;
    at = parents.front();
    above.push_back(at);
  }
  return above;
}

bool AreInConflict(const View &view, const Member &a, const Member &b, std::uint32_t slot) {
  if (!a.Has(ACE_DELEGATED, slot) && !b.Has(ACE_DELEGATED, slot)) return true;
  const auto aboveA = AboveOf(view, a);
  const auto aboveB = AboveOf(view, b);
  const auto isIn = [](const auto &list, const Member &one) {
    return std::find(list.begin(), list.end(), &one) != list.end();
  };
  const bool known = !aboveA.empty() && !aboveB.empty() && aboveA.back()->msc && aboveB.back()->msc;
  return known && !isIn(aboveA, b) && !isIn(aboveB, a);
}

void CheckReservedTwice(const View &view, Findings &findings) {
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    std::vector<const Member *> given = view.slots[slot].reservers;
    std::erase_if(given, [&](const Member *one) { return IsUngiven(view, *one, slot); });
    for (std::size_t i = 0; i + 1 < given.size(); ++i) {
      const auto other = std::find_if(
          given.begin() + static_cast<std::ptrdiff_t>(i) + 1, given.end(),
          [&](const Member *one) { return AreInConflict(view, *given[i], *one, slot); });
      if (other == given.end()) continue;
      const std::string &a = given[i]->host->name;
      const std::string &b = (*other)->host->name;
      findings.push_back({"SLOT_RESERVED_TWICE",
                          {a, b},
                          {slot},
                          fmt::format("{} and {} each have slot {} in their reserve, and neither "
                                      "stands above the other.",
                                      a, b, slot),
                          "Two clients may get the same slot: one from each.",
                          ReserveAnew(view, {given[i], *other})});
    }
  }
}

// Whether somebody may still be the client of a slot, as far as the tables that were read tell.
bool MayHaveClient(const View &view, std::uint32_t slot) {
  const SlotMarks &marks = view.slots[slot];
  if (!marks.holders.empty() || !marks.parents.empty() || marks.lost) return true;
  if (std::any_of(view.backups.begin(), view.backups.end(),
                  [slot](const Member *backup) { return backup->Has(ACE_SELF, slot); })) {
    return true;
  }
  return view.mscs.empty() && marks.reservers.empty();
}

void CheckServers(const View &view, Findings &findings) {
  for (const Member &server : view.members) {
    if (server.backup) continue;
    const auto slots = SlotsWhere(
        [&](std::uint32_t slot) { return server.Serves(slot) && !MayHaveClient(view, slot); });
    if (slots.empty()) continue;
    const std::string &name = server.host->name;
    findings.push_back(
        {"SERVES_NOBODY",
         {name},
         slots,
         fmt::format("{} serves {}, which no client has.", name, SlotText(slots)),
         "The deletion of a group did not reach this server: the next client that gets the slot "
         "could reach its storage.",
         Readmission(view, server)});
  }
}

std::string NextForOffline(const View &view) {
  if (!view.survey.excluded.empty()) return AwaitMissing(view);
  return (view.unread.empty()
              ? std::string("Bring the missing client back into reach")
              : "Bring the missing client back into reach: it may be " + Listed(view.unread)) +
         ". Where it is gone for good, delete the groups below with `kvrctl group delete`.";
}

void CheckOffline(const View &view, Findings &findings) {
  for (const MissingClient &missing : view.survey.missing) {
    const auto pool =
        std::find_if(view.members.begin(), view.members.end(), [&](const Member &one) {
          if (!missing.parent.empty()) return one.host->name == missing.parent;
          return &one == view.Local() && !one.backup;
        });
    const auto slots =
        pool == view.members.end() ? std::vector<std::uint32_t>{} : pool->lostClients;
    findings.push_back(
        {"OFFLINE_CLIENT", missing.clients, slots,
         fmt::format(
             "An Offline Client group stands above {}{}.",
             missing.clients.empty() ? "no group" : "the groups of " + Listed(missing.clients),
             slots.empty() ? "" : ", for the client of " + SlotText(slots)),
         "The client between them and the host above was not found, so that these groups can't get "
         "servers, a reserve or another client.",
         NextForOffline(view)});
  }
}

}  // namespace

void CheckPools(const View &view, Findings &findings) {
  CheckLost(view, findings);
  CheckOffline(view, findings);
  CheckForgotten(view, findings);
  CheckUngiven(view, findings);
  CheckReservedTwice(view, findings);
  CheckServers(view, findings);
}

}  // namespace kvrctl
