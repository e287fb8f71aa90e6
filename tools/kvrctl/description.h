// Everything that can be said to kvrctl and what comes of it, as one record: the manual pages, the
// reference and the shells' completions are made from it.
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "command.h"

namespace kvrctl {

using Words = std::vector<std::string>;

// What stands at these words below app: app itself, a family or a command. Null where nothing does.
const CLI::App *Below(const CLI::App &app, const Words &words);

// The description, with those commands only whose words begin so. Hidden commands are left out.
Json DescriptionOf(const CLI::App &app, const Commands &commands, const Words &words);

}  // namespace kvrctl
