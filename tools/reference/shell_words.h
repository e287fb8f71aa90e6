// What the completions of both shells have in common.
#pragma once

#include <string>

#include "pages.h"

namespace reference {

// A word in single quotes, as every shell takes it for itself.
inline std::string Quoted(const std::string &text) {
  return '\'' + Replaced(text, "'", "'\\''") + '\'';
}

// The kind of the values that a shell can offer for an argument or option; where only some are
// allowed, these; empty where it can offer nothing.
inline std::string KindOf(const Json &item) {
  if (!item.at("choices").empty()) return Joined(item.at("choices"), " ");
  return item.at("completes").is_null() ? "" : item.at("completes").get<std::string>();
}

}  // namespace reference
