// Tables that hold what no library writes.
#include <algorithm>

#include <fmt/format.h>

#include "findings.h"
#include "findings_advice.h"
#include "paths.h"
#include "table_image.h"

namespace kvrctl {
namespace {

// Whether the roles at a slot can't stand beside one another in the table of such a member.
bool Contradict(const Member &member, std::uint32_t slot) {
  const auto has = [&](std::uint32_t bits) { return member.Has(bits, slot); };
  const bool given = has(ACE_CHILD | ACE_DELEGATED);
  if (has(ACE_CHILD) && has(ACE_DELEGATED)) return true;
  if (has(ACE_MSC) && has(ACE_BACKUP_MSC)) return true;
  if (has(ACE_MSC | ACE_BACKUP_MSC) && !has(ACE_SELF)) return true;
  if (has(ACE_SELF) && (given || has(ACE_RESERVED))) return true;
  if (member.msc || member.backup) return has(ACE_RESERVED);
  return given && !has(ACE_RESERVED);
}

struct Fault {
  const char *what;  // completes "its table has ..."
  std::vector<std::uint32_t> positions;
};

std::vector<Fault> FaultsIn(const Member &member) {
  const SaTable &table = *member.host->table;
  std::vector<Fault> faults = {{"a number that is not its own", {}},
                               {"a key length that is not 64", {}},
                               {"bits without a meaning", {}},
                               {"marks that exclude one another", {}}};
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    const bool unknown = UnknownServeBits(table, n) != 0 || UnknownRoleBits(table, n) != 0;
    if (table.entries[n].slotIndex != n) faults[0].positions.push_back(n);
    if (table.entries[n].key.keyLength != KVR_KEY_LENGTH) faults[1].positions.push_back(n);
    if (unknown) faults[2].positions.push_back(n);
    if (n < KVR_SLOT_COUNT && Contradict(member, n)) faults[3].positions.push_back(n);
  }
  std::erase_if(faults, [](const Fault &fault) { return fault.positions.empty(); });
  return faults;
}

std::string FormatFault(const SaTableHeader &header) {
  if (header.formatId == KVR_SA_TABLE_FORMAT_ID &&
      header.formatRevision == KVR_SA_TABLE_FORMAT_REVISION) {
    return "";
  }
  return fmt::format("format {}, revision {} in place of {}, {}", header.formatId,
                     header.formatRevision, KVR_SA_TABLE_FORMAT_ID, KVR_SA_TABLE_FORMAT_REVISION);
}

void CheckTable(const View &view, const Member &member, Findings &findings) {
  std::vector<std::string> parts;
  std::vector<std::uint32_t> slots;
  const std::string format = FormatFault(member.host->table->header);
  if (!format.empty()) parts.push_back(format);
  for (const Fault &fault : FaultsIn(member)) {
    parts.push_back(fmt::format("{} at {} of {} positions, the first being {}", fault.what,
                                fault.positions.size(), KVR_POSITION_COUNT,
                                fault.positions.front()));
    slots.insert(slots.end(), fault.positions.begin(), fault.positions.end());
  }
  if (parts.empty()) return;
  std::sort(slots.begin(), slots.end());
  slots.erase(std::unique(slots.begin(), slots.end()), slots.end());
  std::erase_if(slots, [](std::uint32_t n) { return n >= KVR_SLOT_COUNT; });
  const std::string &name = member.host->name;
  findings.push_back(
      {"TABLE_DAMAGED",
       {name},
       slots,
       fmt::format("The table of {} has {}.", name, Listed(parts)),
       "No library writes a table so: it was changed or damaged outside, and what "
       "else it says is in doubt.",
       fmt::format("Look at it with {}. {}", Command({"kvrctl", "table", "dump"}, {name}),
                   Readmission(view, member))});
}

std::string NameFault(const StoredNames &names) {
  if (!names.asciiEnded) return "its 8-bit form has no end";
  if (!names.wideEnded) return "its UTF-16 form has no end";
  if (!names.agree) {
    return fmt::format("its 8-bit form is '{}', its UTF-16 form '{}'", names.ascii, names.wide);
  }
  return "";
}

void CheckName(const View &view, const Member &member, Findings &findings) {
  const std::string fault = NameFault(NamesIn(member.host->table->header));
  if (fault.empty()) return;
  const std::string &name = member.host->name;
  const bool client = member.slot && !member.msc && !member.backup;
  findings.push_back(
      {"NAME_DAMAGED",
       {name},
       {},
       fmt::format("The group's name in the table of {} is damaged: {}.", name, fault),
       "The group goes by different names for different readers.",
       client && !view.mscs.empty()
           ? fmt::format("{} run {}, which writes both forms.", OnMsc(view),
                         Command({"kvrctl", "group", "rename"}, {ClientPath(name), "NAME"}))
           : Readmission(view, member)});
}

}  // namespace

void CheckDamage(const View &view, Findings &findings) {
  for (const Member &member : view.members) {
    CheckTable(view, member, findings);
    CheckName(view, member, findings);
  }
}

}  // namespace kvrctl
