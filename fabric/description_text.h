// The text of a fabric.toml, for the files of this room that read and edit it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "fabric/description.h"

namespace fabric {

// FOLDER/fabric.toml
std::filesystem::path DescriptionFile(const std::filesystem::path &folder);

// The file's whole text. Throws DescriptionError.
std::string ReadDescriptionText(const std::filesystem::path &file);

// Reads and checks a text; file is its name in the DescriptionError that is thrown for a bad one.
Description ParseDescription(std::string_view text, const std::string &file);

}  // namespace fabric
