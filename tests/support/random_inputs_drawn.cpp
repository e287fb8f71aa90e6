#include <cstdlib>
#include <fstream>
#include <optional>
#include <rapidcheck.h>

#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include "support/random_inputs.h"

namespace kvrtest {
namespace {

rc::Gen<Row> RowWithin(const Row &limits) {
  return rc::gen::exec([limits] {
    Row row;
    for (const unsigned limit : limits)
      row.push_back(*rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0u, limit)));
    return row;
  });
}

}  // namespace

void ExpectForRandomInputs(const std::string &name, const Shape &shape,
                           const std::function<std::string(const Rows &)> &property) {
  const char *folder = std::getenv("KVR_RANDOM_INPUTS");
  std::optional<std::ofstream> kept;
  if (folder != nullptr) kept.emplace(std::string(folder) + "/" + name);
  const auto first = RowWithin(shape.first);
  const auto others =
      rc::gen::resize(shape.length, rc::gen::container<Rows>(RowWithin(shape.others)));
  EXPECT_TRUE(rc::check(name, [&] {
    Rows rows = {*first};
    for (Row &row : *others) rows.push_back(std::move(row));
    const std::string outcome = property(rows);
    if (!kept) return;
    *kept << outcome << "\n";
    for (const Row &row : rows) *kept << fmt::format("{} \n", fmt::join(row, " "));
    *kept << "\n";
  }));
  EXPECT_TRUE(!kept || kept->flush()) << folder;
}

}  // namespace kvrtest
