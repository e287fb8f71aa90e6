#include "fabric/current.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "fabric/platform_files.h"

namespace fabric {
namespace {

void Complain(const std::exception &error) {
  std::fprintf(stderr, "simulated network: %s\n", error.what());
}

// Throws std::runtime_error with what to do about it. The file is closed again: who reads it may
// remove it.
void WriteLine(const std::filesystem::path &file, const std::string &line,
               std::ios::openmode mode) {
  if (std::ofstream(file, std::ios::binary | mode) << line << '\n' << std::flush) return;
  throw std::runtime_error(file.string() +
                           " cannot be written; set KVR_OVERLAY to a file that can be");
}

Network::Witness TellIn(const std::filesystem::path &file) {
  return [file](std::string_view function, const std::string &host) {
    try {
      WriteLine(file, std::string(function) + " " + host, std::ios::app);
      return true;
    } catch (const std::exception &error) {
      Complain(error);
      return false;
    }
  };
}

// Throws std::runtime_error with what to do about it when the environment leads to no network.
std::shared_ptr<Network> OpenFabric(Library caller) {
  Network::Witness witness;
  const auto overlay = Environment("KVR_OVERLAY");
  if (overlay && caller == Library::kTqlink) {
    const auto file = std::filesystem::absolute(PathOf(*overlay));
    WriteLine(file, "overlay", std::ios::trunc);
    witness = TellIn(file);
  }
  const auto folder = Environment("KVR_FABRIC"), host = Environment("KVR_HOST");
  if (!folder || !host) {
    throw std::runtime_error(
        "set KVR_FABRIC to the folder of a fabric and KVR_HOST to the host of it to act as");
  }
  const auto absolute = std::filesystem::absolute(PathOf(*folder));
  Description description = LoadDescription(absolute);
  const bool known = std::any_of(description.hosts.begin(), description.hosts.end(),
                                 [&](const Host &described) { return described.name == *host; });
  if (!known) {
    throw std::runtime_error("KVR_HOST is '" + *host + "', which is no host of " + *folder +
                             "/fabric.toml; set it to one that is described there");
  }
  std::shared_ptr<ImageStore> images = std::make_shared<FolderStore>(absolute);
  if (overlay) images = std::make_shared<OverlayStore>(images);
  auto network = std::make_shared<Network>(std::move(description), *host, images);
  network->SetWitness(std::move(witness));
  return network;
}

std::shared_ptr<Network> MakeFromEnvironment(Library caller) {
  std::shared_ptr<Network> network;
  try {
    network = OpenFabric(caller);
  } catch (const std::exception &error) {
    Complain(error);
    network = std::make_shared<Network>(Description{}, "");
  }
  network->SetTrace(Environment("KVR_TRACE").value_or("0") != "0");
  return network;
}

// The network stays in place until no callback can come any more: one under way may still call it.
struct Holder {
  std::mutex mutex;
  std::shared_ptr<Network> network;

  Holder() = default;
  Holder(const Holder &) = delete;
  Holder &operator=(const Holder &) = delete;
  ~Holder() {
    if (network) network->StopAnnouncing();
  }
};

Holder &TheHolder() {
  static Holder holder;
  return holder;
}

}  // namespace

std::shared_ptr<Network> CurrentNetwork(Library caller) {
  Holder &holder = TheHolder();
  const std::lock_guard guard(holder.mutex);
  if (!holder.network) holder.network = MakeFromEnvironment(caller);
  return holder.network;
}

void AbandonCurrentNetwork() {
  // The lock may be held by a thread that is no more.
  new std::shared_ptr<Network>(std::move(TheHolder().network));
}

void SetCurrentNetwork(std::shared_ptr<Network> network) {
  Holder &holder = TheHolder();
  std::shared_ptr<Network> previous;  // ends after the lock, which its last callback may need
  const std::lock_guard guard(holder.mutex);
  previous = std::exchange(holder.network, std::move(network));
}

}  // namespace fabric
