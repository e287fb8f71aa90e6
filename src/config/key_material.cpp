#include "config/key_material.h"

#include <algorithm>

#include "model/local_state.h"
#include "platform/byte_order.h"
#include "platform/clock.h"

namespace kvr {
namespace {

// What stands in for a zero byte, by the byte's position in the word from the least significant.
constexpr std::uint32_t ZERO_BYTE_SUBSTITUTES[4] = {0x5B, 0xC7, 0x2D, 0x96};

// The key of the switch position, the same in every configuration.
constexpr std::uint32_t SWITCH_KEY[KVR_KEY_MATERIAL_WORDS] = {
    0x8F41D37A, 0x2B96E50C, 0xD7136AF8, 0x49E2B75D, 0x17C85E93, 0xA46F3BD2, 0x6E59C124, 0xF32D874B,
    0x3CB60FA9, 0x95D84E71, 0x5A17F3E6, 0xC28B6D45, 0x7E94A12F, 0x1D63CB58, 0xB9F5278E, 0x46AD913C,
    0xE8325F17, 0x63CE7AB4, 0x0F9154D8, 0x9B7AE623, 0x247DB86F, 0xDA58139E, 0x71E6CF42, 0xAC3495BD,
    0x5836F1E7, 0xE1C94B75, 0x3F7285DA, 0x84AB6E19, 0xCD1F9763, 0x12E5B84F, 0xB6483DCA, 0x69D7F251};

}  // namespace

RandomGenerator::RandomGenerator() : state_(CurrentTimeSeconds()) {}

std::uint32_t RandomGenerator::Draw() {
  state_ = state_ * 214013U + 2531011U;
  return state_ >> 16 & 0x7FFFU;
}

std::uint32_t RandomGenerator::DrawNonZero() {
  for (;;) {
    if (const std::uint32_t draw = Draw()) return draw;
  }
}

std::uint32_t RandomGenerator::Word() {
  const std::uint32_t high = DrawNonZero();
  std::uint32_t word = high << 16 | DrawNonZero();
  for (std::uint32_t position = 0; position < 4; ++position) {
    const std::uint32_t shift = 8 * position;
    if ((word >> shift & 0xFFU) == 0) word |= ZERO_BYTE_SUBSTITUTES[position] << shift;
  }
  return word;
}

void GenerateKeyTable(KeyTable &table) {
  RandomGenerator random;
  for (KeyEntry &entry : table.entries) {
    entry.keyLength = KVR_KEY_LENGTH;
    entry.reserved = 0;
    for (std::uint32_t &word : entry.keyMaterial)
      word = random.Word();
  }
  std::ranges::copy(SWITCH_KEY, table.entries[KVR_SWITCH_POSITION].keyMaterial);
}

void MakeConfigId(std::uint32_t (&configId)[KVR_CONFIG_ID_WORDS], bool copy) {
  if (copy) {
    std::ranges::copy(g_localSaTable.header.configId, configId);
    return;
  }
  RandomGenerator random;
  for (std::uint32_t &word : configId)
    word = ToNetworkOrder(random.Word());
}

}  // namespace kvr
