// The path by which a group is named: the names from the top level down, joined by '/', as
// "sales/north". It may start at any group by its client instead: "@h02" is the group whose client
// is host h02, "@h02/north" the one called north below it. A group without a name is always shown
// so.
//
// Inside a name '/' is written "\/" and '\' is written "\\"; a leading '@' is written "\@".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvrctl {

struct GroupPath {
  std::string client;              // the host after '@', or empty: the path starts at the top level
  std::vector<std::string> names;  // unescaped; empty only where there is a client
};

// The path of the group called name under the group at parentPath ("": at the top level).
std::string JoinPath(const std::string &parentPath, std::string_view name);

// The path of the group of a client.
std::string ClientPath(std::string_view client);

// The path as a user would write it.
std::string PathText(const GroupPath &path);

// Takes a path apart. Throws Failure where it is empty, is not valid UTF-8, ends in a lone '\' or
// holds an empty name.
GroupPath SplitPath(std::string_view path);

}  // namespace kvrctl
