// Plays the inputs of the corpus, and a number of random ones, without a fuzzer:
//
//   fuzz_replay CORPUS RANDOM_INPUTS
//
// The random inputs are the same in every run.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int argc, char **argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: fuzz_replay CORPUS RANDOM_INPUTS\n");
    return 2;
  }
  std::size_t files = 0;
  for (const auto &entry : std::filesystem::directory_iterator(argv[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::vector<char> input{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.data()), input.size());
    ++files;
  }
  const unsigned long count = std::strtoul(argv[2], nullptr, 10);
  std::mt19937 random;
  for (unsigned long i = 0; i < count; ++i) {
    std::vector<std::uint8_t> input(3 + 8 * (random() % 64));
    for (std::uint8_t &byte : input) byte = static_cast<std::uint8_t>(random());
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  std::printf("%zu inputs of the corpus and %lu random ones played\n", files, count);
  return files > 0 ? 0 : 1;
}
