// Hosts and adapters that don't answer, and hosts that can't be told apart.
#include <map>
#include <utility>

#include <fmt/format.h>

#include "findings.h"
#include "findings_advice.h"

namespace kvrctl {
namespace {

void CheckAdapters(const SurveyedHost &host, Findings &findings) {
  if (host.silentAdapters.empty()) return;
  std::vector<std::string> ordinals;
  for (const std::size_t ordinal : host.silentAdapters)
    ordinals.push_back(std::to_string(ordinal));
  findings.push_back(
      {"ADAPTER_SILENT",
       {host.name},
       {},
       fmt::format("Of the adapters of {}, counted from 0, {} does not answer; another does.",
                   host.name, Listed(ordinals)),
       "Every access to the host tries that adapter too, and it is lost when the other fails.",
       "Check the adapter, its cable and its switch port; on the simulated network, `up` of that "
       "adapter in fabric.toml, or a fault described there (`kvrctl fabric show`)."});
}

void CheckHost(const SurveyedHost &host, Findings &findings) {
  if (host.table != nullptr || (host.reach != Reach::Down && host.reach != Reach::NoWay)) return;
  const bool down = host.reach == Reach::Down;
  findings.push_back(
      {"HOST_UNREACHABLE",
       {host.name},
       {},
       fmt::format("{} is described as down{}.", host.name,
                   down ? "" : ": all of its adapters are"),
       "What its table says is not known here, and no change reaches it.",
       down ? fmt::format("Take it up with {}.",
                          Command({"kvrctl", "fabric", "set", "--up"}, {host.name}))
            : fmt::format("Set `up = true` at the adapters of {} in fabric.toml; `kvrctl fabric "
                          "show` counts those that are up.",
                          host.name)});
}

std::string NextForUnreadable(const View &view, const SurveyedHost &host) {
  if (host.reach == Reach::Refused) {
    return "Check its adapters, and the faults described in fabric.toml (`kvrctl fabric show`); "
           "then run `kvrctl doctor` again.";
  }
  const std::string copy = fmt::format(
      "Put a whole copy of the file tables/{}.satable back, and run `kvrctl doctor` again. ",
      host.name);
  if (view.mscs.empty()) {
    return copy +
           "Where there is none and it was the MSC's, run `kvrctl takeover` on a backup MSC.";
  }
  return copy + "Where there is none, what it held is lost. " + RemovalByHand({host.name});
}

void CheckUnreadable(const View &view, const SurveyedHost &host, Findings &findings) {
  if (host.table != nullptr || (host.reach != Reach::Torn && host.reach != Reach::Refused)) return;
  findings.push_back(
      {"TABLE_UNREADABLE",
       {host.name},
       {},
       fmt::format("{} holds a table, but {}.", host.name,
                   host.reach == Reach::Torn
                       ? fmt::format("its file has not the {} bytes of one", KVR_SA_TABLE_SIZE)
                       : "none of its adapters gives it"),
       "The host counts as one outside the configuration, and slots that are its own or in its "
       "reserve as lost.",
       NextForUnreadable(view, host)});
}

void CheckUnread(const View &view, Findings &findings) {
  std::vector<std::string> names;
  for (const SurveyedHost &host : view.survey.hosts) {
    if (host.table == nullptr && host.reach == Reach::Unknown) names.push_back(host.name);
  }
  if (names.empty()) return;
  findings.push_back({"HOSTS_UNREAD",
                      names,
                      {},
                      fmt::format("No table of {} could be read.", Listed(names)),
                      "A host outside the configuration and one that is out of reach look the same "
                      "from here, so which it is can't be told.",
                      "Where one of them should take part, check that it and its adapters are up, "
                      "and run `kvrctl doctor` again.",
                      false});
}

void CheckNames(const View &view, Findings &findings) {
  std::map<std::pair<std::string, std::string>, std::vector<std::string>> bearers;
  for (const SurveyedHost &host : view.survey.hosts)
    bearers[{host.name, host.wideName}].push_back(host.name);
  for (const auto &[names, hosts] : bearers) {
    if (hosts.size() < 2) continue;
    findings.push_back(
        {"SAME_NAMES",
         hosts,
         {},
         fmt::format("{} hosts have the same names, '{}' and '{}'.", hosts.size(), names.first,
                     names.second),
         "No command can name one of them, and what is found about it may be about the other.",
         "Give the hosts names that differ; `kvrctl hosts` lists them."});
  }
}

}  // namespace

void CheckReach(const View &view, Findings &findings) {
  for (const SurveyedHost &host : view.survey.hosts) {
    CheckAdapters(host, findings);
    CheckHost(host, findings);
    CheckUnreadable(view, host, findings);
  }
  CheckUnread(view, findings);
  CheckNames(view, findings);
}

}  // namespace kvrctl
