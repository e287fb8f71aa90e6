// Who is the MSC, whose copy of its table is good, and who holds which slot.
#include <algorithm>
#include <cstring>

#include <fmt/format.h>

#include "findings.h"
#include "findings_advice.h"

namespace kvrctl {
namespace {

std::vector<std::string> NamesOf(const std::vector<const Member *> &members) {
  std::vector<std::string> names;
  for (const Member *member : members)
    names.push_back(member->host->name);
  return names;
}

void CheckTwoMscs(const View &view, Findings &findings) {
  if (view.mscs.size() < 2) return;
  const auto names = NamesOf(view.mscs);
  std::vector<std::uint32_t> slots;
  for (const Member *msc : view.mscs)
    slots.push_back(*msc->slot);
  std::sort(slots.begin(), slots.end());
  slots.erase(std::unique(slots.begin(), slots.end()), slots.end());
  findings.push_back(
      {"TWO_MSCS", names, slots,
       fmt::format("{} each call themselves the MSC, in {}.", Listed(names), SlotText(slots)),
       "A takeover leaves it so: the former MSC does not know that it is replaced, and any command "
       "run on it writes to the backup MSCs.",
       "Keep the former MSC cut off from the other hosts, run `kvrctl destroy` on it, connect it "
       "again, and bring it back with `kvrctl acg add HOST` on the other one."});
}

std::string NextWithoutMsc(const std::vector<std::string> &backups) {
  if (!backups.empty()) {
    return fmt::format(
        "Bring the MSC back into reach; where it is lost, run `kvrctl takeover` on {}.",
        backups.size() == 1 ? backups.front() : "one of " + Listed(backups));
  }
  return "Bring the MSC back into reach. Where it is lost, nobody can take its place: `kvrctl "
         "create` on a host that holds no table, then `kvrctl destroy` there, removes the tables "
         "of all hosts that it sees, so that a new configuration can be made.";
}

void CheckNoMsc(const View &view, Findings &findings) {
  if (!view.mscs.empty() || view.members.empty()) return;
  const auto backups = NamesOf(view.backups);
  findings.push_back(
      {"NO_MSC",
       backups,
       {},
       view.members.size() == 1
           ? fmt::format("The one table of the configuration, that of {}, is no MSC's.",
                         view.members.front().host->name)
           : fmt::format("None of the {} tables of the configuration is an MSC's.",
                         view.members.size()),
       "Nobody can change members, keys or top-level groups, and what the MSC has "
       "given out can't be judged here.",
       NextWithoutMsc(backups)});
}

std::string NextForHolders(const View &view, std::uint32_t slot) {
  if (view.mscs.empty()) return AwaitMsc(view);
  const auto &holders = view.slots[slot].holders;
  const auto msc = std::find_if(holders.begin(), holders.end(),
                                [](const Member *holder) { return holder->msc; });
  if (msc == holders.end()) {
    return "Keep the one that it was meant for. " + RemovalByHand({"HOST"});
  }
  if ((*msc)->slot != slot) return MscStays(**msc);
  std::vector<const Member *> others = holders;
  std::erase_if(others, [](const Member *holder) { return holder->msc; });
  return fmt::format("Keep the table of {}, the MSC. {}", (*msc)->host->name,
                     RemovalByHand(NamesOf(others)));
}

void CheckHolders(const View &view, Findings &findings) {
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    const auto &holders = view.slots[slot].holders;
    const bool all =
        std::all_of(holders.begin(), holders.end(), [](const Member *one) { return one->msc; });
    if (holders.size() < 2 || all) continue;
    const auto names = NamesOf(holders);
    findings.push_back({"SLOT_HELD_TWICE",
                        names,
                        {slot},
                        fmt::format("{} each hold slot {}.", Listed(names), slot),
                        "A slot stands for one client: whoever serves it lets all of them in.",
                        NextForHolders(view, slot)});
  }
}

std::string NextForSeveral(const View &view, const Member &member) {
  if (view.mscs.empty()) return AwaitMsc(view);
  return member.msc ? MscStays(member) : RemovalByHand({member.host->name});
}

void CheckOwnSlots(const View &view, Findings &findings) {
  for (const Member &member : view.members) {
    std::vector<std::uint32_t> own;
    for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
      if (member.Has(ACE_SELF, slot)) own.push_back(slot);
    }
    // Another copy of the MSC's table writes over a backup's.
    if (own.size() < 2 || member.backup) continue;
    const std::string &name = member.host->name;
    findings.push_back({"SEVERAL_SLOTS",
                        {name},
                        own,
                        fmt::format("{} calls {} its own.", name, SlotText(own)),
                        "Every reader takes the highest, and the others are lost.",
                        NextForSeveral(view, member)});
  }
}

// The positions at which the backup's access words are not those that the MSC would give it.
std::vector<std::uint32_t> StalePositions(const Member &backup, const Member &msc) {
  std::vector<std::uint32_t> stale;
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    AccessEntry expected = msc.host->table->entries[n].access;
    if (n == msc.slot) {
      expected.roleFlags = (expected.roleFlags & ~ACE_MSC) | ACE_BACKUP_MSC;
      expected.serveFlags |= ACE_SERVES;
    }
    const AccessEntry &held = backup.host->table->entries[n].access;
    if (std::memcmp(&held, &expected, sizeof held) != 0) stale.push_back(n);
  }
  return stale;
}

// With two MSCs a copy of either's table is as good.
void CheckCopies(const View &view, Findings &findings) {
  for (const Member *backup : view.backups) {
    std::vector<std::uint32_t> stale;
    for (const Member *msc : view.mscs) {
      stale = StalePositions(*backup, *msc);
      if (stale.empty()) break;
    }
    if (stale.empty()) continue;
    const std::string &msc = view.mscs.back()->host->name;
    const std::string &name = backup->host->name;
    std::vector<std::uint32_t> slots = stale;
    std::erase_if(slots, [](std::uint32_t n) { return n >= KVR_SLOT_COUNT; });
    findings.push_back(
        {"BACKUP_STALE",
         {name, msc},
         slots,
         fmt::format("The copy of the access table that {} keeps differs from that of {} at {} of "
                     "{} positions, the first being {}.",
                     name, msc, stale.size(), KVR_POSITION_COUNT, stale.front()),
         fmt::format("Should {} take the MSC's role over, it would go on from what it copied last.",
                     name),
         fmt::format("Run `kvrctl status` on {}, which writes the copy anew. Where this is found "
                     "again, {} refuses the write: check its adapters.",
                     msc, name)});
  }
}

}  // namespace

void CheckRoles(const View &view, Findings &findings) {
  CheckTwoMscs(view, findings);
  CheckNoMsc(view, findings);
  CheckHolders(view, findings);
  CheckOwnSlots(view, findings);
  CheckCopies(view, findings);
}

}  // namespace kvrctl
