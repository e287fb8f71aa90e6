#include "tables/adapter_loop.h"

#include <cstring>

#include "model/local_state.h"

namespace kvr {
namespace {

std::uint32_t WordAt(const std::uint8_t *bytes) {
  std::uint32_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

}  // namespace

AdapterCredential GetAdapterCredential(const AdapterInfo &adapter) {
  if (adapter.credentialValid == 0) return {0, 0};
  return {WordAt(adapter.credential), WordAt(adapter.credential + 4)};
}

AdapterAddress AddressOf(const AdapterInfo &adapter) {
  const AdapterCredential credential = GetAdapterCredential(adapter);
  return {credential.word0, credential.word1, WordAt(adapter.adapterId),
          WordAt(adapter.adapterId + 4)};
}

AdapterAddress LocalAddress() {
  const std::uint8_t *id = g_localAdapters[0]->localAdapterId;
  return {0, 0, WordAt(id), WordAt(id + 4)};
}

}  // namespace kvr
