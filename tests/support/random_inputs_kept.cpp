#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>

#include "support/random_inputs.h"

namespace kvrtest {
namespace {

Row RowOf(const std::string &line) {
  std::istringstream numbers(line);
  return {std::istream_iterator<unsigned>(numbers), {}};
}

}  // namespace

void ExpectForRandomInputs(const std::string &name, const Shape &,
                           const std::function<std::string(const Rows &)> &property) {
  const char *folder = std::getenv("KVR_RANDOM_INPUTS");
  std::ifstream kept(std::string(folder != nullptr ? folder : ".") + "/" + name);
  std::size_t inputs = 0;
  for (std::string outcome; std::getline(kept, outcome); ++inputs) {
    Rows rows;
    for (std::string line; std::getline(kept, line) && !line.empty();) rows.push_back(RowOf(line));
    EXPECT_EQ(property(rows), outcome) << name << ", input " << inputs;
  }
  EXPECT_GT(inputs, 0u) << "KVR_RANDOM_INPUTS must name the folder of those that were drawn";
}

}  // namespace kvrtest
