// The random material of a configuration: slot, identity and keys.
//
// The generator is a linear congruential one whose state belongs to the calling thread. It is
// seeded with the time in whole seconds before each use, so what is made within one second starts
// alike.
#pragma once

#include <cstdint>

#include "kvrapi/table_formats.h"

namespace kvr {

// Seeds the calling thread's generator with the current time.
void SeedRandom();

// The next draw, 0 to 32767.
std::uint32_t DrawRandom();

// A word made of draws in which no byte is zero.
std::uint32_t RandomWord();

// Fills a key table with fresh keys; position 246 gets the fixed switch key. Seeds the generator.
void GenerateKeyTable(KeyTable &table);

// Fills an identity as a header stores it: the local table's one when copy is set, else a fresh
// one, for which the generator is seeded.
void MakeConfigId(std::uint32_t (&configId)[KVR_CONFIG_ID_WORDS], bool copy);

}  // namespace kvr
