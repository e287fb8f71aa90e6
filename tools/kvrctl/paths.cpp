#include "paths.h"

#include <algorithm>

#include <fmt/format.h>

#include "kvrapi/text.hpp"

#include "failure.h"
#include "text.h"

namespace kvrctl {
namespace {

std::string Escaped(std::string_view name) {
  std::string out = name.substr(0, 1) == "@" ? "\\" : "";
  for (const char c : name) {
    if (c == '/' || c == '\\') out += '\\';
    out += c;
  }
  return out;
}

Failure Malformed(std::string_view path, const char *fault) {
  return {ExitStatus::Usage, "INVALID_PATH", fmt::format("The path '{}' {}.", path, fault),
          R"(Join names with '/'; inside a name write \/ for a slash and \\ for a backslash.)"};
}

}  // namespace

std::string JoinPath(const std::string &parentPath, std::string_view name) {
  return parentPath.empty() ? Escaped(name) : parentPath + '/' + Escaped(name);
}

std::string ClientPath(std::string_view client) {
  std::string path = Escaped(client);
  return path.substr(0, 2) == "\\@" ? "@" + path.substr(1) : "@" + path;
}

std::string PathText(const GroupPath &path) {
  std::string text = path.client.empty() ? "" : ClientPath(path.client);
  for (const std::string &name : path.names)
    text = JoinPath(text, name);
  return text;
}

GroupPath SplitPath(std::string_view path) {
  if (!kvrapi::Utf16Of(path)) {
    throw Failure(ExitStatus::Usage, "INVALID_PATH",
                  fmt::format("The path '{}' is not valid UTF-8.", Printable(path)),
                  "Write the path in UTF-8.");
  }
  const bool fromClient = path.substr(0, 1) == "@";
  std::vector<std::string> names(1);
  for (std::size_t i = fromClient ? 1 : 0; i < path.size(); ++i) {
    if (path[i] == '/') {
      names.emplace_back();
      continue;
    }
    if (path[i] == '\\' && ++i == path.size()) throw Malformed(path, "ends in a lone backslash");
    names.back() += path[i];
  }
  if (std::find(names.begin(), names.end(), "") != names.end()) {
    throw Malformed(path, "holds an empty name");
  }
  if (!fromClient) return {"", names};
  return {names.front(), {names.begin() + 1, names.end()}};
}

}  // namespace kvrctl
