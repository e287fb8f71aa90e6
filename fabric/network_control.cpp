#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "fabric/network.h"

namespace fabric {
namespace {

std::vector<std::uint8_t> BytesOf(const SaTable &image) {
  std::vector<std::uint8_t> bytes(sizeof image);
  std::memcpy(bytes.data(), &image, sizeof image);
  return bytes;
}

}  // namespace

std::vector<std::string> ChangedHosts(const ImageSet &before, const ImageSet &after) {
  std::vector<std::string> changed;
  for (const auto &[host, image] : before) {
    const auto found = after.find(host);
    if (found == after.end() || found->second != image) changed.push_back(host);
  }
  for (const auto &[host, image] : after) {
    if (!before.contains(host)) changed.push_back(host);
  }
  std::sort(changed.begin(), changed.end());
  return changed;
}

std::uint32_t Network::Find(const std::string &host) const {
  const auto found = hosts_.find(host);
  if (found == hosts_.end()) throw std::out_of_range("the network has no host '" + host + "'");
  return found->second;
}

void Network::SetWitness(Witness witness) {
  const std::lock_guard guard(mutex_);
  witness_ = std::move(witness);
}

void Network::SetLocalHost(std::string_view host) {
  const std::lock_guard guard(mutex_);
  const auto found = hosts_.find(std::string(host));
  localHost_ = found != hosts_.end() ? std::optional(found->second) : std::nullopt;
}

void Network::SetHostUp(const std::string &host, bool up) {
  const std::lock_guard guard(mutex_);
  description_.hosts[Find(host)].up = up;
}

void Network::SetAdapterUp(const std::string &host, std::uint32_t ordinal, bool up) {
  const std::lock_guard guard(mutex_);
  description_.hosts[Find(host)].adapters.at(ordinal).up = up;
}

AdapterAddress Network::AddressOf(const std::string &host, std::uint32_t ordinal) const {
  const Adapter &adapter = description_.hosts[Find(host)].adapters.at(ordinal);
  return {adapter.credential.value_or(Id8{}), adapter.id};
}

void Network::AddFault(Fault fault) {
  const std::lock_guard guard(mutex_);
  faults_.push_back({std::move(fault)});
}

void Network::FailCall(std::uint32_t number) {
  AddFault({"", {}, "*", number, 1});
}

void Network::FailFromCall(std::uint32_t number) {
  AddFault({"", {}, "*", number, {}});
}

void Network::ClearFaults() {
  const std::lock_guard guard(mutex_);
  faults_.clear();
}

std::optional<SaTable> Network::Image(const std::string &host) const {
  std::optional<SaTable> copy;
  images_->Read(description_.hosts[Find(host)].name, [&](const SaTable &image) { copy = image; });
  return copy;
}

void Network::PlantImage(const std::string &host, const SaTable &image) {
  if (!images_->Write(description_.hosts[Find(host)].name, image)) {
    throw std::runtime_error("the table of '" + host + "' cannot be stored");
  }
}

void Network::RemoveImage(const std::string &host) {
  images_->Remove(description_.hosts[Find(host)].name);
}

ImageSet Network::Images() const {
  ImageSet images;
  for (const Host &host : description_.hosts) {
    images_->Read(host.name, [&](const SaTable &image) { images[host.name] = BytesOf(image); });
  }
  return images;
}

void Network::RestoreImages(const ImageSet &images) {
  for (const Host &host : description_.hosts) {
    const auto found = images.find(host.name);
    if (found == images.end()) {
      RemoveImage(host.name);
      continue;
    }
    SaTable image;
    std::memcpy(&image, found->second.data(), sizeof image);
    PlantImage(host.name, image);
  }
}

void Network::SetLogging(bool on) {
  const std::lock_guard guard(mutex_);
  logging_ = on;
}

std::vector<CallRecord> Network::TakeLog() {
  const std::lock_guard guard(mutex_);
  return std::exchange(log_, {});
}

void Network::SetTrace(bool on) {
  const std::lock_guard guard(mutex_);
  tracing_ = on;
}

}  // namespace fabric
