#include "host_changes.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "text.h"

namespace kvrctl {
namespace {

// True of a host that is already as the change would make it.
bool IsSettled(const HostFailure &failed) {
  switch (failed.code) {
    case KVR_ERR_ALREADY_IN_ACG:
    case KVR_ERR_NOT_IN_ACG:
    case KVR_ERR_ALREADY_ASG_SERVER:
    case KVR_ERR_NOT_ASG_SERVER:
    case KVR_ERR_ALREADY_BACKUP_MSC:
    case KVR_ERR_NOT_BACKUP_MSC:
      return true;
    default:
      return false;
  }
}

}  // namespace

HostResults ChangeEach(const std::vector<const Host *> &hosts, const Change &change) {
  HostResults results;
  for (const Host *host : hosts) {
    const std::uint32_t code = change(host->handle);
    if (code == KVR_OK) {
      results.done.push_back(host->name);
    } else {
      results.failed.push_back({host->name, code});
    }
  }
  return results;
}

HostResults ResultsInAcg(const Library &library, std::uint32_t code) {
  const auto kept = library.TakeFailedHosts();
  HostResults results;
  for (const Host *host : kept)
    results.failed.push_back({host->name, code});
  for (const Host &host : library.Hosts()) {
    const bool failed = std::find(kept.begin(), kept.end(), &host) != kept.end();
    if (host.inAcg && !failed) results.done.push_back(host.name);
  }
  return results;
}

Outcome ChangeHosts(const Library &library, const std::vector<std::string> &names,
                    const Wording &wording, const Change &change) {
  const HostResults results = ChangeEach(library.HostsNamed(names), change);
  Outcome outcome = {{{"done", results.done}},
                     Line("{}: {}.", wording.didSo, Shown(results.done)),
                     {},
                     std::nullopt};
  if (results.failed.empty()) return outcome;
  Failure failure = PartialFailure(wording.doing, results, NamingFailed(wording.command, results));
  if (results.done.empty()) {
    failure.status = StatusOf(failure.code);
    throw failure;
  }
  outcome.failure = failure;
  return outcome;
}

void AddMscChange(CLI::App &family, Chosen &chosen, const std::string &name,
                  const std::string &description, const Wording &wording,
                  std::uint32_t (*change)(KVR_SYSTEM)) {
  const auto hosts = std::make_shared<std::vector<std::string>>();
  const auto run = [hosts, wording, change] {
    const Library library;
    library.RequireAllHosts(wording.doing);
    return ChangeHosts(library, *hosts, wording, change);
  };
  AddCommand(family, name, description, chosen, run)
      ->add_option("HOST", *hosts, "The hosts, by their 8-bit or UTF-16 names")
      ->required();
}

void AddRetry(Failure &failure, const std::vector<std::string> &command) {
  failure.hint += fmt::format(" To retry: `{}`.", CommandText(command));
}

std::vector<std::string> NamingFailed(std::vector<std::string> command,
                                      const HostResults &results) {
  std::vector<std::string> open;
  for (const HostFailure &failed : results.failed) {
    if (!IsSettled(failed)) open.push_back(failed.host);
  }
  return Naming(std::move(command), open);
}

Failure PartialFailure(const std::string &doing, const HostResults &results,
                       const std::vector<std::string> &retry) {
  const auto &failed = results.failed;
  Json names = Json::array();
  for (const HostFailure &one : failed)
    names.push_back(one.host);
  const std::size_t total = results.done.size() + failed.size();
  const std::string share =
      results.done.empty() ? "" : fmt::format(" ({} of {} hosts)", failed.size(), total);
  const auto open = std::find_if_not(failed.begin(), failed.end(), IsSettled);
  const bool settled = open == failed.end();
  Failure failure(doing, (settled ? failed.front() : *open).code, Shown(names) + share);
  failure.status = ExitStatus::Partial;
  failure.failedHosts = failed;
  if (!settled) AddRetry(failure, retry);
  return failure;
}

Json WithThisHost(Json done, bool here) {
  if (here) done.push_back("this host");
  return done;
}

void AddLocalFailure(Outcome &outcome, const std::vector<std::string> &retry) {
  Failure failure("Storing this host's table", KVR_ERR_LOCAL_WRITE_FAILED);
  if (outcome.failure) {
    outcome.notes.push_back(failure.message);
    return;
  }
  failure.status = ExitStatus::Partial;
  AddRetry(failure, retry);
  outcome.failure = failure;
}

}  // namespace kvrctl
