// What the public header promises of each function's results, held against what the functions
// answer to the tests of this program: no code that isn't promised, and, where the variable
// KVR_EVERY_PROMISE asks for it, none that no test reaches.
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

#include "support/world.h"

namespace {

using Codes = std::map<std::string, std::set<std::uint32_t>>;

// By function; a function that answers no result code has none.
Codes Promised() {
  std::ifstream stream(SOURCE_DIR "/include/kvrapi/kvrapi.h");
  const std::string header{std::istreambuf_iterator<char>(stream), {}};
  const std::regex declared(R"(/\*((?:[^*]|\*(?!/))*)\*/\nKVR_API \S+ (KVR_\w+)\()");
  const std::regex code(R"(\b(5\d\d\d)\b|Results:\s(0))"), other(R"(^ As (KVR_\w+))");
  Codes promised;
  for (std::sregex_iterator match(header.begin(), header.end(), declared), end; match != end;
       ++match) {
    const std::string comment = (*match)[1];
    auto &codes = promised[(*match)[2]];
    std::smatch model;
    if (std::regex_search(comment, model, other)) codes = promised[model[1]];
    for (std::sregex_iterator found(comment.begin(), comment.end(), code); found != end; ++found)
      codes.insert(static_cast<std::uint32_t>(std::stoul((*found)[(*found)[1].matched ? 1 : 2])));
  }
  return promised;
}

Codes g_answered;

class Promises : public testing::Environment {
  void TearDown() override {
    const Codes promised = Promised();
    EXPECT_EQ(promised.size(), 54u);
    for (const auto &[function, codes] : promised) {
      std::set<std::uint32_t> answered = codes.empty() ? codes : g_answered[function], unreached;
      answered.erase(5999);  // by every function alike: the gate
      for (const std::uint32_t code : codes)
        if (answered.erase(code) == 0) unreached.insert(code);
      EXPECT_TRUE(answered.empty()) << fmt::format("{} never promised {}", function, answered);
      EXPECT_TRUE(unreached.empty() || std::getenv("KVR_EVERY_PROMISE") == nullptr)
          << fmt::format("{}: no test reaches {}", function, unreached);
    }
  }
};

const auto *const g_promises = testing::AddGlobalTestEnvironment(new Promises);

}  // namespace

// The linker leads every call here first. No function takes more than five arguments, and each fits
// a word.
using Word = std::uintptr_t;
#define NOTED(function)                                                       \
  extern "C" Word __real_##function(Word, Word, Word, Word, Word);            \
  extern "C" Word __wrap_##function(Word a, Word b, Word c, Word d, Word e) { \
    const Word result = __real_##function(a, b, c, d, e);                     \
    g_answered[#function].insert(static_cast<std::uint32_t>(result));         \
    return result;                                                            \
  }
#include "exports.inc"
