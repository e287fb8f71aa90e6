#include "tables/host_names.h"

#include <algorithm>
#include <cstring>

#include "kvrapi/kvrapi.h"

#include "platform/byte_order.h"
#include "platform/text.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

// Both forms of a name as the plain strings that the blocks store word by word.
struct NameBlocks {
  char ascii[KVR_NAME_CAPACITY] = {};
  KVR_WCHAR wide[KVR_NAME_CAPACITY] = {};
};

template <class Char, std::size_t Words>
void StoreBlock(std::uint32_t (&block)[Words], const Char (&text)[KVR_NAME_CAPACITY]) {
  static_assert(sizeof block == sizeof text);
  std::memcpy(block, text, sizeof block);
  std::ranges::transform(block, block, ToNetworkOrder);
}

template <class Char, std::size_t Words>
void LoadBlock(Char (&text)[KVR_NAME_CAPACITY], const std::uint32_t (&block)[Words]) {
  static_assert(sizeof block == sizeof text);
  std::uint32_t words[Words];
  std::ranges::transform(block, words, FromNetworkOrder);
  std::memcpy(text, words, sizeof words);
}

std::uint32_t WriteHostName(SystemRecord *host, const NameBlocks &names) {
  SaTableHeader header;
  if (const std::uint32_t result = ReadSaHeader(host, header)) return result;
  StoreBlock(header.asciiName, names.ascii);
  StoreBlock(header.wideName, names.wide);
  return WriteSaHeader(host, header);
}

}  // namespace

std::uint32_t WriteHostNameA(SystemRecord *host, const char *name) {
  NameBlocks names;
  const std::size_t length = BoundedLength(name, KVR_NAME_CAPACITY);
  CopyPadded(names.ascii, KVR_NAME_CAPACITY, name, length);
  Widen(names.wide, name, length);
  return WriteHostName(host, names);
}

std::uint32_t WriteHostNameW(SystemRecord *host, const KVR_WCHAR *name) {
  NameBlocks names;
  const std::size_t length = BoundedLength(name, KVR_NAME_CAPACITY);
  CopyPadded(names.wide, KVR_NAME_CAPACITY, name, length);
  Narrow(names.ascii, name, length);
  return WriteHostName(host, names);
}

std::uint32_t ClearHostName(SystemRecord *host) {
  SaTableHeader header;
  if (const std::uint32_t result = ReadSaHeader(host, header)) return result;
  std::ranges::fill(header.asciiName, 0U);
  return WriteSaHeader(host, header);
}

std::uint32_t ReadHostName(SystemRecord *host, char (*ascii)[KVR_NAME_CAPACITY],
                           KVR_WCHAR (*wide)[KVR_NAME_CAPACITY]) {
  SaTableHeader header;
  if (const std::uint32_t result = ReadSaHeader(host, header)) return result;
  if (ascii != nullptr) LoadBlock(*ascii, header.asciiName);
  if (wide != nullptr) LoadBlock(*wide, header.wideName);
  return KVR_OK;
}

}  // namespace kvr
