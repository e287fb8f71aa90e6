#include "no_network.h"

#include <algorithm>
#include <string>

#include <fmt/format.h>

#include "fabric/platform_files.h"
#include "text.h"

namespace kvrctl {
namespace {

constexpr char kFabricVariable[] = "KVR_FABRIC";
constexpr char kHostVariable[] = "KVR_HOST";

Failure NoNetwork(std::string sentence, std::string wayOut) {
  return {ExitStatus::NothingToTalkTo, "NO_FABRIC", std::move(sentence), std::move(wayOut)};
}

// The cause of a 5002 as a failure of its own, or the plain one where the settings are in order.
Failure CauseOfNoAdapter() {
  Failure plain("Initializing the library", KVR_ERR_NO_LOCAL_ADAPTER);
  const auto folder = fabric::Environment(kFabricVariable);
  if (!folder) return plain;
  const auto description = ReadDescription(*folder);
  const auto name = fabric::Environment(kHostVariable);
  if (!name) {
    return NoNetwork("No host of the fabric is named for this run.",
                     "Give --host NAME or set KVR_HOST; `kvrctl fabric show` lists the hosts.");
  }
  const auto host = std::find_if(description.hosts.begin(), description.hosts.end(),
                                 [&](const fabric::Host &one) { return one.name == *name; });
  if (host == description.hosts.end()) {
    return NoNetwork(fmt::format("The fabric '{}' has no host '{}'.", *folder, *name),
                     "Choose one of the hosts that `kvrctl fabric show` lists.");
  }
  if (host->adapters.empty()) {
    return NoNetwork(fmt::format("Host '{}' is described without an adapter.", *name),
                     "Give it a [[host.adapter]] in fabric.toml, or name another host.");
  }
  if (host->up) return plain;
  return NoNetwork(fmt::format("Host '{}' is down in the fabric.", *name),
                   fmt::format("Take it up with `{}`.",
                               CommandText(Naming({"kvrctl", "fabric", "set", "--up"}, {*name}))));
}

}  // namespace

Failure NoLocalAdapter() {
  Failure failure = [] {
    try {
      return CauseOfNoAdapter();
    } catch (const Failure &refused) {
      return refused;
    }
  }();
  if (failure.code == 0) {
    failure.code = KVR_ERR_NO_LOCAL_ADAPTER;
    failure.name = kvrapi::TextOf(failure.code).name;
    failure.message +=
        fmt::format(" So this host has no adapter ({} {}).", failure.code, failure.name);
  }
  return failure;
}

std::filesystem::path FabricFolder() {
  if (const auto folder = fabric::Environment(kFabricVariable)) return fabric::PathOf(*folder);
  throw NoNetwork("No fabric is named.", "Give --fabric DIR or set KVR_FABRIC.");
}

fabric::Description ReadDescription(const std::filesystem::path &folder) {
  std::error_code ignored;
  if (!std::filesystem::exists(folder / "fabric.toml", ignored)) {
    throw NoNetwork(fmt::format("There is no fabric.toml in '{}'.", folder.string()),
                    "Name another folder, or make a fabric there with `kvrctl fabric new`.");
  }
  try {
    return fabric::LoadDescription(folder);
  } catch (const std::exception &error) {
    throw DescriptionRefused(error);
  }
}

Failure DescriptionRefused(const std::exception &error) {
  return NoNetwork(fmt::format("The description of the fabric is refused: {}.", error.what()),
                   "Correct that line; `kvrctl fabric new` makes a whole new fabric elsewhere.");
}

}  // namespace kvrctl
