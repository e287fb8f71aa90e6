#include "table_image.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include <fmt/format.h>

#include "kvrapi/text.hpp"

#include "fingerprint.h"

namespace kvrctl {
namespace {

constexpr std::size_t kShortFingerprint = 16;  // hexadecimal digits

template <class Record>
std::string_view BytesOf(const Record &record) {
  return {reinterpret_cast<const char *>(&record), sizeof record};
}

std::string HexOf(std::string_view bytes) {
  std::string digits;
  for (const char byte : bytes)
    digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  return digits;
}

std::string Fingerprint(std::string_view bytes) {
  return Sha256(bytes).substr(0, kShortFingerprint);
}

// A name block as the plain string that it stores word by word in network order.
template <std::size_t Words>
std::string PlainBlock(const std::uint32_t (&block)[Words]) {
  std::string plain(BytesOf(block));
  for (std::size_t word = 0; word < Words; ++word) {
    const auto at = plain.begin() + static_cast<std::ptrdiff_t>(word * sizeof block[0]);
    std::reverse(at, at + sizeof block[0]);
  }
  return plain;
}

kvrapi::WideString UnitsOf(const std::string &plain) {
  kvrapi::WideString units(plain.size() / 2, KVR_WCHAR{});
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const auto byte = static_cast<unsigned char>(plain[i]);
    units[i / 2] = static_cast<KVR_WCHAR>(units[i / 2] | byte << (i % 2 * 8));
  }
  return units;
}

// Cuts the text at its terminator; false where there is none.
template <class Text>
bool EndText(Text &text) {
  const std::size_t end = text.find(typename Text::value_type{});
  if (end == Text::npos) return false;
  text.resize(end);
  return true;
}

std::string Narrowed(const kvrapi::WideString &wide) {
  std::string narrow;
  for (const KVR_WCHAR unit : wide) {
    if (unit > 0xFF) break;
    narrow += static_cast<char>(static_cast<unsigned char>(unit));
  }
  return narrow;
}

std::string KeysOf(const SaTable &table) {
  std::string keys;
  for (const SaEntry &entry : table.entries)
    keys += BytesOf(entry.key);
  return keys;
}

Json PositionOf(const SaTable &table, std::uint32_t position) {
  const SaEntry &entry = table.entries[position];
  const bool isSlot = position < KVR_SLOT_COUNT;
  const std::uint32_t serve = entry.access.serveFlags;
  const auto role = [&](std::uint32_t bit) {
    return isSlot && (entry.access.roleFlags & bit) != 0;
  };
  return {{"position", position},
          {"serves", isSlot && (serve & ACE_SERVES) != 0},
          {"self", role(ACE_SELF)},
          {"msc", role(ACE_MSC)},
          {"backup_msc", role(ACE_BACKUP_MSC)},
          {"child", role(ACE_CHILD)},
          {"delegated", role(ACE_DELEGATED)},
          {"reserved", role(ACE_RESERVED)},
          {"switch_access", position == KVR_SWITCH_POSITION && (serve & ACE_SWITCH_ACCESS) != 0},
          {"unknown_serve_bits", UnknownServeBits(table, position)},
          {"unknown_role_bits", UnknownRoleBits(table, position)},
          {"slot_index", entry.slotIndex},
          {"reserved_words",
           {entry.reserved, entry.access.reserved2, entry.access.reserved3, entry.key.reserved}},
          {"key_length", entry.key.keyLength}};
}

bool IsOfInterest(const SaEntry &entry, std::uint32_t position) {
  constexpr AccessEntry kUnused = {};
  return std::memcmp(&entry.access, &kUnused, sizeof kUnused) != 0 || entry.slotIndex != position ||
         entry.reserved != 0 || entry.key.reserved != 0 || entry.key.keyLength != KVR_KEY_LENGTH;
}

// Adds the values that differ between two of the same shape, named by where they stand.
void AddDifferences(Json &differences, const std::string &at, const Json &a, const Json &b) {
  if (a.is_structured()) {
    auto other = b.begin();
    for (const auto &[key, value] : a.items())
      AddDifferences(differences, fmt::format("{}/{}", at, key), value, *other++);
  } else if (a != b) {
    differences.push_back({{"field", at}, {"a", a}, {"b", b}});
  }
}

}  // namespace

StoredNames NamesIn(const SaTableHeader &header) {
  std::string ascii = PlainBlock(header.asciiName);
  kvrapi::WideString wide = UnitsOf(PlainBlock(header.wideName));
  StoredNames names;
  names.asciiEnded = EndText(ascii);
  names.wideEnded = EndText(wide);
  names.agree = ascii.empty() || ascii == Narrowed(wide);
  names.ascii = kvrapi::Utf8OfBytes(ascii);
  names.wide = kvrapi::Utf8Of(wide);
  return names;
}

std::string ConfigIdIn(const SaTableHeader &header) {
  return HexOf(BytesOf(header.configId));
}

std::optional<std::uint32_t> OwnSlot(const SaTable &table) {
  return OwnSlot([&table](std::uint32_t slot) { return table.entries[slot].access.roleFlags; });
}

bool HasSwitchAccess(const SaTable &table) {
  return (table.entries[KVR_SWITCH_POSITION].access.serveFlags & ACE_SWITCH_ACCESS) != 0;
}

bool HaveSameKeys(const SaTable &a, const SaTable &b) {
  return std::equal(std::begin(a.entries), std::end(a.entries), std::begin(b.entries),
                    [](const SaEntry &one, const SaEntry &other) {
                      return BytesOf(one.key) == BytesOf(other.key);
                    });
}

std::uint32_t UnknownServeBits(const SaTable &table, std::uint32_t position) {
  const std::uint32_t known = position <= KVR_SWITCH_POSITION ? ACE_SERVES | ACE_SWITCH_ACCESS : 0;
  return table.entries[position].access.serveFlags & ~known;
}

std::uint32_t UnknownRoleBits(const SaTable &table, std::uint32_t position) {
  constexpr std::uint32_t kRoles =
      ACE_SELF | ACE_MSC | ACE_CHILD | ACE_DELEGATED | ACE_RESERVED | ACE_BACKUP_MSC;
  return table.entries[position].access.roleFlags & ~(position < KVR_SLOT_COUNT ? kRoles : 0);
}

Json Decoded(const SaTable &table, const Detail &detail) {
  const StoredNames names = NamesIn(table.header);
  Json positions = Json::array();
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    const KeyEntry &key = table.entries[n].key;
    if (!detail.all && !IsOfInterest(table.entries[n], n)) continue;
    Json &position = positions.emplace_back(PositionOf(table, n));
    if (detail.keys) {
      position["key"] = HexOf(BytesOf(key.keyMaterial));
    } else if (detail.all) {
      position["key"] = Fingerprint(BytesOf(key));
    }
  }
  return {{"fingerprint", Fingerprint(BytesOf(table))},
          {"format", {{"id", table.header.formatId}, {"revision", table.header.formatRevision}}},
          {"config_id", ConfigIdIn(table.header)},
          {"names",
           {{"ascii", names.ascii},
            {"wide", names.wide},
            {"ascii_ended", names.asciiEnded},
            {"wide_ended", names.wideEnded}}},
          {"keys", {{"fingerprint", Fingerprint(KeysOf(table))}}},
          {"positions", positions}};
}

Json Differences(const SaTable &a, const SaTable &b, bool positionKeys) {
  const Detail detail = {true, false};
  Json differences = Json::array();
  AddDifferences(differences, "", Decoded(a, detail), Decoded(b, detail));
  if (positionKeys) return differences;
  Json others = Json::array();
  for (const Json &one : differences) {
    const auto field = one["field"].get<std::string>();
    if (!field.starts_with("/positions/") || !field.ends_with("/key")) others.push_back(one);
  }
  return others;
}

}  // namespace kvrctl
