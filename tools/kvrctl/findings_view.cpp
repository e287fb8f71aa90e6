#include "findings_view.h"

#include <algorithm>
#include <cstring>

#include "table_image.h"

namespace kvrctl {
namespace {

// A stray mark does not hide the role: the slot that carries one goes before the others.
std::optional<std::uint32_t> RoleSlot(const SaTable &table, std::uint32_t role) {
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    const std::uint32_t flags = table.entries[slot].access.roleFlags;
    if ((flags & ACE_SELF) != 0 && (flags & role) != 0) return slot;
  }
  return std::nullopt;
}

Member MemberOf(const SurveyedHost &host) {
  Member member;
  member.host = &host;
  member.slot = RoleSlot(*host.table, ACE_MSC);
  if (!member.slot) member.slot = RoleSlot(*host.table, ACE_BACKUP_MSC);
  if (!member.slot) member.slot = OwnSlot(*host.table);
  if (!member.slot) return member;
  member.msc = member.Has(ACE_MSC, *member.slot);
  member.backup = !member.msc && member.Has(ACE_BACKUP_MSC, *member.slot);
  return member;
}

bool AreOfOne(const SaTable &a, const SaTable &b) {
  return ConfigIdIn(a.header) == ConfigIdIn(b.header) || HaveSameKeys(a, b);
}

// The number of tables that belong with this one.
std::ptrdiff_t Followers(const Survey &survey, const SurveyedHost &host) {
  return std::count_if(survey.hosts.begin(), survey.hosts.end(), [&](const SurveyedHost &other) {
    return other.table != nullptr && AreOfOne(*host.table, *other.table);
  });
}

const SurveyedHost *ReferenceIn(const Survey &survey) {
  const auto here =
      std::find_if(survey.hosts.begin(), survey.hosts.end(),
                   [](const SurveyedHost &host) { return host.local && host.table != nullptr; });
  const SurveyedHost *best = here == survey.hosts.end() ? nullptr : &*here;
  if (best != nullptr && IsMsc(*best)) return best;
  const bool takesPart = best != nullptr;
  std::ptrdiff_t most = 0;
  for (const SurveyedHost &host : survey.hosts) {
    if (host.table == nullptr || !IsMsc(host)) continue;
    if (takesPart && AreOfOne(*host.table, *here->table)) return &host;
    if (takesPart || Followers(survey, host) <= most) continue;
    most = Followers(survey, host);
    best = &host;
  }
  if (best != nullptr) return best;
  const auto any = std::find_if(survey.hosts.begin(), survey.hosts.end(),
                                [](const SurveyedHost &host) { return host.table != nullptr; });
  return any == survey.hosts.end() ? nullptr : &*any;
}

}  // namespace

bool IsMsc(const SurveyedHost &host) {
  return RoleSlot(*host.table, ACE_MSC).has_value();
}

bool Member::Serves(std::uint32_t at) const {
  return (host->table->entries[at].access.serveFlags & ACE_SERVES) != 0;
}

bool Member::Has(std::uint32_t roleFlag, std::uint32_t at) const {
  return (host->table->entries[at].access.roleFlags & roleFlag) != 0;
}

bool Member::IsParentOf(const Member &child) const {
  return child.slot && Has(ACE_CHILD, *child.slot);
}

View::View(const Survey &from) : survey(from), reference(ReferenceIn(from)) {
  FillMembers();
  FillMarks();
  FindLost();
}

void View::FillMembers() {
  for (const SurveyedHost &host : survey.hosts) {
    if (host.table == nullptr) {
      if (host.reach != Reach::Up) unread.push_back(host.name);
    } else if (AreOfOne(*host.table, *reference->table)) {
      members.push_back(MemberOf(host));
    } else {
      strangers.push_back(&host);
    }
  }
  for (const Member &member : members) {
    if (member.msc) mscs.push_back(&member);
    if (member.backup) backups.push_back(&member);
  }
}

void View::FillMarks() {
  for (const Member &member : members) {
    if (member.backup) continue;
    for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
      SlotMarks &marks = slots[slot];
      if (member.Has(ACE_SELF, slot)) marks.holders.push_back(&member);
      if (member.Has(ACE_CHILD, slot)) marks.parents.push_back(&member);
      if (member.Has(ACE_RESERVED, slot)) marks.reservers.push_back(&member);
      if (member.Has(ACE_DELEGATED, slot)) marks.delegators.push_back(&member);
    }
  }
}

void View::FindLost() {
  for (Member &member : members) {
    if (member.backup) continue;
    for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
      const auto &reservers = slots[slot].reservers;
      if (member.Has(ACE_CHILD, slot) && slots[slot].holders.empty()) {
        member.lostClients.push_back(slot);
      }
      if (member.Has(ACE_DELEGATED, slot) &&
          std::none_of(reservers.begin(), reservers.end(),
                       [&](const Member *child) { return member.IsParentOf(*child); })) {
        member.lostReserve.push_back(slot);
        slots[slot].lost = true;
      }
    }
  }
}

bool View::HasParent(const Member &client) const {
  return client.slot && !slots[*client.slot].parents.empty();
}

const Member *View::Local() const {
  const auto found = std::find_if(members.begin(), members.end(),
                                  [](const Member &member) { return member.host->local; });
  return found == members.end() ? nullptr : &*found;
}

}  // namespace kvrctl
