// The random material of a configuration: slot, identity and keys.
//
// The generator is a linear congruential one, made anew with the time in whole seconds as its seed
// for each use, so what is made within one second starts alike.
#pragma once

#include <cstdint>

#include "kvrapi/table_formats.h"

namespace kvr {

class RandomGenerator {
 public:
  // Seeded with the current time.
  RandomGenerator();

  // The next draw, 0 to 32767.
  std::uint32_t Draw();

  // A word made of draws in which no byte is zero.
  std::uint32_t Word();

 private:
  std::uint32_t DrawNonZero();

  std::uint32_t state_;
};

// Fills a key table with fresh keys; position 246 gets the fixed switch key.
void GenerateKeyTable(KeyTable &table);

// Fills an identity as a header stores it: the local table's one when copy is set, else a fresh
// one.
void MakeConfigId(std::uint32_t (&configId)[KVR_CONFIG_ID_WORDS], bool copy);

}  // namespace kvr
