// One host's table, taken apart: what its bytes say, and in what they differ from another's.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kvrapi/table_formats.h"

#include "show.h"

namespace kvrctl {

// A header's name blocks, in UTF-8, each up to its terminator or its end.
struct StoredNames {
  std::string ascii;
  std::string wide;
  bool asciiEnded = false;  // false: the block holds no terminator
  bool wideEnded = false;
  bool agree = false;  // the 8-bit form is what narrowing the other gives, or is empty, as cleared
};

StoredNames NamesIn(const SaTableHeader &header);

// The identity of the configuration in 32 hexadecimal digits, in the order of its stored bytes.
std::string ConfigIdIn(const SaTableHeader &header);

// The highest slot marked as the table owner's own, as every reader takes it; roleFlags(i) gives
// the word of slot i.
template <class RoleFlags>
std::optional<std::uint32_t> OwnSlot(const RoleFlags &roleFlags) {
  for (std::uint32_t slot = KVR_SLOT_COUNT; slot-- > 0;) {
    if ((roleFlags(slot) & ACE_SELF) != 0) return slot;
  }
  return std::nullopt;
}
std::optional<std::uint32_t> OwnSlot(const SaTable &table);

bool HasSwitchAccess(const SaTable &table);
bool HaveSameKeys(const SaTable &a, const SaTable &b);

// The bits that have no meaning at this position, 0 to 255.
std::uint32_t UnknownServeBits(const SaTable &table, std::uint32_t position);
std::uint32_t UnknownRoleBits(const SaTable &table, std::uint32_t position);

struct Detail {
  bool all = false;   // every position and its key, not only the positions of interest
  bool keys = false;  // the key material itself, in hexadecimal, in place of fingerprints
};

// The table field by field. A position is of interest that has any access word, or a word that
// differs from what every table holds there.
Json Decoded(const SaTable &table, const Detail &detail);

// The fields that differ, as [{"field","a","b"}]; the field is where the value stands in the
// decoded table with every position, or without the positions' keys where they aren't asked for.
// Empty only for tables that are equal byte by byte.
Json Differences(const SaTable &a, const SaTable &b, bool positionKeys);

}  // namespace kvrctl
