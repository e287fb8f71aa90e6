// Text made from a command's result, so that what is read says what the JSON form says: the result
// is built once, as JSON, and the text is drawn from it alone.
//
// In text null is "-", true and false are yes and no, a list is joined by ", ".
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "screen.h"
#include "text.h"

namespace kvrctl {

using Json = nlohmann::ordered_json;

// Draws a result as whole lines. What it captures is wording, never a fact.
using Drawing = std::function<std::string(const Json &result, const Screen &screen)>;

// How a value is painted.
using Tone = Style (*)(const Json &value);

Style WarningIfTrue(const Json &value);
Style WarningIfFalse(const Json &value);

// One fact of an object: its key in JSON, what it is called in text, and how its values are painted
// where any of them is worth it.
struct Fact {
  const char *key;
  const char *label;
  Tone tone = nullptr;
};

// One value in text.
std::string Shown(const Json &value);

// A list in text; "none" where it is empty.
std::string ShownList(const Json &list);

// An array of objects as a table with one line each, under a line of labels. With no object, only
// the sentence `none`.
Drawing AsTable(std::vector<Fact> columns, std::string none);

// One object as lines of label and value.
Drawing AsSheet(std::vector<Fact> lines);

// A formatted sentence as a line, made printable.
template <class... Arguments>
std::string Line(fmt::format_string<Arguments...> format, Arguments &&...arguments) {
  return Printable(fmt::format(format, std::forward<Arguments>(arguments)...)) + '\n';
}

}  // namespace kvrctl
