// Random inputs for properties: rows of numbers, which a property makes of them what it needs.
//
// RapidCheck draws them, and shortens those that break the property. Where KVR_RANDOM_INPUTS names
// a folder, they are kept there, each with what it led to, and a build for a system without
// RapidCheck plays what is kept there: it must lead to the same.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kvrtest {

using Row = std::vector<unsigned>;
using Rows = std::vector<Row>;

// What an input looks like: each number is below the limit in its column. The first row is always
// there and has limits of its own; so many others follow at most.
struct Shape {
  Row first, others;
  int length;
};

// Expects the property to hold for inputs of that shape. It throws where it does not, and returns
// in one line what the input leads to, whatever the platform. The name is a file's.
void ExpectForRandomInputs(const std::string &name, const Shape &shape,
                           const std::function<std::string(const Rows &)> &property);

}  // namespace kvrtest
