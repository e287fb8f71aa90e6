// Creating the configuration.
#include "support/world.h"

using namespace kvrtest;

namespace {

// The generator as the platform's srand and rand have it.
struct Reference {
  std::uint32_t state;
  std::uint32_t Draw() { return (state = state * 214013 + 2531011) >> 16 & 0x7FFF; }
  std::uint32_t NonZero() {
    const std::uint32_t draw = Draw();
    return draw != 0 ? draw : NonZero();
  }
};

TEST(CreateKVR, MakesSlotIdentityAndKeysFromTheClock) {
  std::optional<KeyEntry> switchKey;
  std::uint32_t substitutes[4] = {};  // of zero bytes, as they are met
  const auto expectWord = [&](std::uint32_t word, Reference &reference) {
    const std::uint32_t high = reference.NonZero(), drawn = high << 16 | reference.NonZero();
    for (std::uint32_t p = 0; p < 4; ++p) {
      const std::uint32_t byte = drawn >> 8 * p & 0xFF, actual = word >> 8 * p & 0xFF;
      if (byte == 0 && substitutes[p] == 0) substitutes[p] = actual;
      ASSERT_EQ(actual, byte != 0 ? byte : substitutes[p]);
      ASSERT_NE(actual, 0u);
    }
  };
  for (g_now = 999'999'999; g_now < 1'000'000'003; ++g_now) {
    const World world({"M", "A"});
    world.As("M");
    std::int32_t slot = -1;
    ASSERT_EQ(KVR_CreateKVR(&slot), KVR_OK);
    Reference forSlot{g_now}, forIdentity{g_now}, forKeys{g_now};
    const SaTable table = *world->Image("M");
    SaTable expected = MakeImage(fmt::format("M {}=3", forSlot.Draw() % 246));
    expected.header = {257, 1, {}, {}, {}, {}, {}};
    std::ranges::copy(table.header.configId, expected.header.configId);
    for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n)
      expected.entries[n].key = table.entries[n].key;
    EXPECT_TRUE(Same(table, expected) && Same(table, kvr::g_localSaTable));
    EXPECT_EQ(table.entries[slot].access.roleFlags, 3u);
    for (const std::uint32_t word : table.header.configId)
      expectWord(__builtin_bswap32(word), forIdentity);
    for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
      const KeyEntry &key = table.entries[n].key;
      EXPECT_EQ(key.keyLength + key.reserved, 64u);
      for (const std::uint32_t word : key.keyMaterial)
        n != KVR_SWITCH_POSITION ? expectWord(word, forKeys)
                                 : void(forKeys.NonZero() + forKeys.NonZero());
    }
    if (!switchKey) switchKey = table.entries[246].key;
    EXPECT_TRUE(std::ranges::equal(switchKey->keyMaterial, table.entries[246].key.keyMaterial));
  }
}

}  // namespace
