#include "fabric/network.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

namespace fabric {
namespace {

struct ViewTraits {
  std::string_view readFunction;
  std::string_view writeFunction;
  std::size_t bytes;
  std::uint32_t capacity;  // as the caller states it
};

const ViewTraits &TraitsOf(View view) {
  static constexpr std::array<ViewTraits, 4> kTraits = {{
      {"TQ_ReadSaTable", "TQ_WriteSaTable", KVR_SA_TABLE_SIZE, KVR_SA_TABLE_SIZE},
      {"TQ_ReadSaTableHeader", "TQ_WriteSaTableHeader", KVR_SA_TABLE_HEADER_SIZE,
       KVR_SA_TABLE_HEADER_SIZE},
      {"TQ_ReadAccessControlTable", "TQ_WriteAccessControlTable", KVR_ACCESS_CONTROL_TABLE_SIZE,
       KVR_POSITION_COUNT},
      {"", "TQ_WriteKeyTable", KVR_KEY_TABLE_SIZE, KVR_POSITION_COUNT},
  }};
  return kTraits.at(static_cast<std::size_t>(view));
}

// Calls transfer(part, offset) for every stretch of the table that belongs to the view; offset is
// that of the stretch in the view's own image.
template <typename Table, typename Transfer>
void ForEachPart(View view, Table &table, Transfer transfer) {
  switch (view) {
    case View::kWhole:
      return transfer(table, 0);
    case View::kHeader:
      return transfer(table.header, 0);
    case View::kAccess:
      for (std::size_t n = 0; n < KVR_POSITION_COUNT; ++n) {
        transfer(table.entries[n].access, n * sizeof(AccessEntry));
      }
      return;
    case View::kKeys:
      for (std::size_t n = 0; n < KVR_POSITION_COUNT; ++n) {
        transfer(table.entries[n].key, n * sizeof(KeyEntry));
      }
      return;
  }
}

void CopyOut(View view, const SaTable &table, void *buffer) {
  ForEachPart(view, table, [&](const auto &part, std::size_t offset) {
    std::memcpy(static_cast<std::uint8_t *>(buffer) + offset, &part, sizeof part);
  });
}

void CopyIn(View view, SaTable &table, std::span<const std::uint8_t> image) {
  ForEachPart(view, table, [&](auto &part, std::size_t offset) {
    std::memcpy(&part, image.data() + offset, sizeof part);
  });
}

std::uint64_t KeyOf(const Id8 &id) {
  std::uint64_t key = 0;
  std::memcpy(&key, id.data(), sizeof key);
  return key;
}

bool IsTq(std::string_view function) {
  return function.starts_with("TQ_");
}

void PrintTrace(const CallRecord &call, std::chrono::steady_clock::duration duration) {
  std::string line(call.function);
  if (!call.host.empty()) line += " host " + call.host;
  if (call.adapter) line += " adapter " + std::to_string(*call.adapter);
  line += " result " + std::to_string(call.result) + ", ";
  const auto time = std::chrono::duration_cast<std::chrono::microseconds>(duration);
  line += std::to_string(time.count()) + " us\n";
  std::fputs(line.c_str(), stderr);
  std::fflush(stderr);  // the last call is told, whatever becomes of the process
}

}  // namespace

Network::Network(Description description, std::string_view localHost,
                 std::shared_ptr<ImageStore> images)
    : description_(std::move(description)),
      images_(images ? std::move(images) : std::make_shared<MemoryStore>()) {
  for (std::uint32_t host = 0; host < description_.hosts.size(); ++host) {
    const Host &described = description_.hosts[host];
    hosts_.emplace(described.name, host);
    for (std::uint32_t ordinal = 0; ordinal < described.adapters.size(); ++ordinal) {
      targets_.emplace(KeyOf(described.adapters[ordinal].id), Target{host, ordinal});
    }
  }
  for (const Fault &fault : description_.faults)
    faults_.push_back({fault});
  SetLocalHost(localHost);
}

std::uint32_t Network::Answer(Call call, std::uint32_t failure, const Act &act) {
  const auto begin = std::chrono::steady_clock::now();
  const std::lock_guard guard(mutex_);
  const std::uint32_t result = IsFaulty(call) ? failure : act(call);
  if (logging_ || tracing_) Record(call, result, begin);
  return result;
}

std::uint32_t Network::AnswerAdapter(std::string_view function, const AdapterAddress &address,
                                     std::span<const std::uint8_t> payload, const HostAct &act) {
  Call call{function, {}, {}, payload};
  const auto found = targets_.find(KeyOf(address.id));
  if (found == targets_.end()) return Answer(call, kFailed, [](Call &) { return kFailed; });
  const Target target = found->second;
  const std::string &host = description_.hosts[target.host].name;
  call.host = host;
  call.adapter = target.ordinal;
  return Answer(call, kFailed, [&](Call &) {
    return IsReachable(target, address.credential) && act(host) ? kOk : kFailed;
  });
}

std::uint32_t Network::AnswerWrite(std::string_view function, const AdapterAddress &address,
                                   std::span<const std::uint8_t> payload, const HostAct &act) {
  return AnswerAdapter(function, address, payload, [&](const std::string &host) {
    return act(host) && (!witness_ || witness_(function, host));
  });
}

bool Network::IsReachable(const Target &target, const Id8 &credential) const {
  const Host &host = description_.hosts[target.host];
  const Adapter &adapter = host.adapters[target.ordinal];
  if (!host.up || !adapter.up) return false;
  if (target.host == localHost_) return target.ordinal == 0 && credential == Id8{};
  return credential == adapter.credential.value_or(Id8{});
}

bool Network::IsFaulty(const Call &call) {
  if (!IsTq(call.function)) return false;
  bool faulty = false;
  for (auto &[fault, seen] : faults_) {
    if (!fault.host.empty() && fault.host != call.host) continue;
    if (fault.adapter && fault.adapter != call.adapter) continue;
    if (fault.function != "*" && fault.function != call.function) continue;
    ++seen;
    const bool over = fault.count && seen - fault.firstCall >= *fault.count;
    if (seen >= fault.firstCall && !over) faulty = true;
  }
  return faulty;
}

void Network::Record(const Call &call, std::uint32_t result,
                     std::chrono::steady_clock::time_point begin) {
  CallRecord record{call.function,
                    std::string(call.host),
                    call.adapter,
                    result,
                    {call.payload.begin(), call.payload.end()}};
  if (tracing_) PrintTrace(record, std::chrono::steady_clock::now() - begin);
  if (logging_) log_.push_back(std::move(record));
}

const Host *Network::LocalHost() const {
  return localHost_ ? &description_.hosts[*localHost_] : nullptr;
}

std::string_view Network::LocalName() const {
  const std::lock_guard guard(mutex_);
  const Host *host = LocalHost();
  return host != nullptr ? std::string_view(host->name) : std::string_view();
}

std::uint32_t Network::LocalAdapters() const {
  const Host *host = LocalHost();
  return host != nullptr && host->up ? static_cast<std::uint32_t>(host->adapters.size()) : 0;
}

std::uint32_t Network::InitLib() {
  return Answer({"TQ_InitLib", LocalName(), {}, {}}, kFailed, [](Call &) { return kOk; });
}

std::uint32_t Network::LocalAdapterCount() {
  return Answer({"TQ_GetNumberOfLocalAdapters", LocalName(), {}, {}}, kNone,
                [&](Call &) { return LocalAdapters(); });
}

std::uint32_t Network::GetLocalAdapter(std::uint32_t ordinal, void *info) {
  return Answer({"TQ_GetLocalHBAInfo", LocalName(), ordinal, {}}, kNone, [&](Call &) {
    if (ordinal >= LocalAdapters() || info == nullptr) return kNone;
    LocalAdapterInfo filled{};
    std::memcpy(filled.localAdapterId, LocalHost()->adapters[ordinal].id.data(), sizeof(Id8));
    std::memcpy(info, &filled, sizeof filled);
    return ordinal + 1 < LocalAdapters() ? kDelivered : kNone;
  });
}

std::uint32_t Network::Read(View view, const AdapterAddress &address, void *buffer,
                            std::uint32_t capacity) {
  const ViewTraits &traits = TraitsOf(view);
  const std::uint32_t result =
      AnswerAdapter(traits.readFunction, address, {}, [&](const std::string &host) {
        if (buffer == nullptr || capacity < traits.capacity) return false;
        return images_->Read(host, [&](const SaTable &table) { CopyOut(view, table, buffer); });
      });
  if (result != kOk && buffer != nullptr) {
    const std::size_t unit = traits.bytes / traits.capacity;
    std::memset(buffer, kUndefinedByte, std::min(capacity, traits.capacity) * unit);
  }
  return result;
}

std::uint32_t Network::Write(View view, const AdapterAddress &address, const void *image) {
  const ViewTraits &traits = TraitsOf(view);
  const std::span payload(static_cast<const std::uint8_t *>(image),
                          image != nullptr ? traits.bytes : 0);
  return AnswerWrite(traits.writeFunction, address, payload, [&](const std::string &host) {
    if (payload.empty()) return false;
    if (view != View::kWhole) {
      return images_->Update(host, [&](SaTable &table) { CopyIn(view, table, payload); });
    }
    SaTable table{};
    CopyIn(view, table, payload);
    return images_->Write(host, table);
  });
}

std::uint32_t Network::RemoveTable(const AdapterAddress &address) {
  return AnswerWrite("TQ_RemoveSaTable", address, {},
                     [&](const std::string &host) { return images_->Remove(host); });
}

std::uint32_t Network::Synchronize(const AdapterAddress &address) {
  return AnswerAdapter("TQ_syncSecurityConfig", address, {}, [&](const std::string &host) {
    return images_->Read(host, [](const SaTable &) {});
  });
}

}  // namespace fabric
