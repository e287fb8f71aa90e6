// What every member of one configuration must have in common: its identity, its keys, the state of
// switch access, and service to the MSC.
#include <algorithm>

#include <fmt/format.h>

#include "findings.h"
#include "findings_advice.h"
#include "table_image.h"

namespace kvrctl {
namespace {

// The names of the members for which differs(member).
std::vector<std::string> NamesWhere(const View &view, const auto &differs) {
  std::vector<std::string> names;
  for (const Member &member : view.members) {
    if (differs(member)) names.push_back(member.host->name);
  }
  return names;
}

std::string IdOf(const SurveyedHost &host) {
  return ConfigIdIn(host.table->header);
}

// Where all others agree against the reference, it is the reference whose identity was changed.
std::vector<const Member *> MembersOfOtherId(const View &view) {
  const std::string id = IdOf(*view.reference);
  std::vector<const Member *> others;
  const Member *reference = nullptr;
  for (const Member &member : view.members) {
    if (member.host == view.reference) reference = &member;
    if (IdOf(*member.host) != id) others.push_back(&member);
  }
  const bool agree = std::all_of(others.begin(), others.end(), [&](const Member *one) {
    return IdOf(*one->host) == IdOf(*others.front()->host);
  });
  if (others.size() > 1 && others.size() + 1 == view.members.size() && agree) return {reference};
  return others;
}

void CheckIdentity(const View &view, Findings &findings) {
  for (const Member *member : MembersOfOtherId(view)) {
    const std::string &name = member->host->name;
    findings.push_back(
        {"IDENTITY_DIFFERS",
         {name},
         {},
         fmt::format("{} has the keys of the configuration, but its identity is {} and not that "
                     "of the others.",
                     name, IdOf(*member->host)),
         "Which configuration the table belongs to is in doubt; once the keys are renewed without "
         "it, nothing ties it to this one.",
         Readmission(view, *member)});
  }
}

std::string NextForStrangers(const View &view, const std::vector<std::string> &names,
                             const std::vector<std::string> &removable, bool slots) {
  if (slots) {
    return "Where that configuration is in use, keep the two apart: no host may see those of both. "
           "Else take it down with `kvrctl destroy` on its own MSC, cut off from these hosts." +
           (removable.empty() ? "" : " " + RemovalByHand(removable));
  }
  return fmt::format(
      "Where the other configuration is in use, keep the two apart: no host may see those of both. "
      "Else {} {} removes what is left of it, and {} brings the {} into this one.",
      OnMscWithin(view), Command({"kvrctl", "acg", "remove"}, names),
      Command({"kvrctl", "acg", "add"}, names), names.size() == 1 ? "host" : "hosts");
}

void CheckStrangers(const View &view, Findings &findings) {
  std::vector<const SurveyedHost *> rest = view.strangers;
  while (!rest.empty()) {
    const std::string id = IdOf(*rest.front());
    std::vector<std::string> names;
    std::vector<std::string> removable;
    bool slots = false;
    for (const SurveyedHost *host : rest) {
      if (IdOf(*host) != id) continue;
      names.push_back(host->name);
      if (!IsMsc(*host)) removable.push_back(host->name);
      slots |= OwnSlot(*host->table).has_value();
    }
    std::erase_if(rest, [&](const SurveyedHost *host) { return IdOf(*host) == id; });
    findings.push_back(
        {"OTHER_CONFIGURATION",
         names,
         {},
         fmt::format("The tables of another configuration are on {}: identity {}, and other keys "
                     "than on {}.",
                     Listed(names), id, view.reference->name),
         "Every host with a table counts as a member: changes that go to all members reach these "
         "too, and `kvrctl destroy` would remove their tables.",
         NextForStrangers(view, names, removable, slots)});
  }
}

void CheckKeys(const View &view, Findings &findings) {
  const auto names = NamesWhere(view, [&](const Member &member) {
    return !HaveSameKeys(*member.host->table, *view.reference->table);
  });
  if (names.empty()) return;
  findings.push_back(
      {"KEYS_DIFFER",
       names,
       {},
       fmt::format("Other keys than on {} are on {}.", view.reference->name, Listed(names)),
       "A renewal of the keys did not reach every member, so these hosts can't prove "
       "themselves to the others.",
       OnMsc(view) + " run `kvrctl renew-keys`."});
}

// A backup's bit is part of its copy of the MSC's table.
void CheckSwitchAccess(const View &view, Findings &findings) {
  const bool on = HasSwitchAccess(*view.reference->table);
  const auto names = NamesWhere(view, [&](const Member &member) {
    return !member.backup && HasSwitchAccess(*member.host->table) != on;
  });
  if (names.empty()) return;
  findings.push_back(
      {"SWITCH_ACCESS_DIFFERS",
       names,
       {},
       fmt::format("Switch access is {} on {}, but not on {}.", on ? "on" : "off",
                   view.reference->name, Listed(names)),
       "A change of switch access did not reach every member.",
       fmt::format("{} run {}, or the other way round.", OnMsc(view),
                   Command({"kvrctl", "switch-access", on ? "on" : "off", "--again"}))});
}

void CheckServiceToMsc(const View &view, Findings &findings) {
  if (view.mscs.empty()) return;
  for (const Member &member : view.members) {
    const bool serves =
        member.msc || std::any_of(view.mscs.begin(), view.mscs.end(),
                                  [&](const Member *msc) { return member.Serves(*msc->slot); });
    if (serves) continue;
    const std::string &name = member.host->name;
    findings.push_back({"MSC_NOT_SERVED",
                        {name},
                        {*view.mscs.front()->slot},
                        fmt::format("{} does not serve the slot of the MSC, {}.", name,
                                    view.mscs.front()->host->name),
                        "The MSC may not reach this member, which itself may not know that it is "
                        "one.",
                        Readmission(view, member)});
  }
}

}  // namespace

void CheckSameness(const View &view, Findings &findings) {
  if (view.reference == nullptr) return;
  CheckIdentity(view, findings);
  CheckStrangers(view, findings);
  CheckKeys(view, findings);
  CheckSwitchAccess(view, findings);
  CheckServiceToMsc(view, findings);
}

}  // namespace kvrctl
