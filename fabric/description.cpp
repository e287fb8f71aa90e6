#include "fabric/description.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <set>
#include <utility>

#include <toml++/toml.h>

#include "kvrapi/tqlink.h"
#include "kvrapi/vexonet.h"

#include "fabric/description_text.h"
#include "fabric/platform_files.h"

namespace fabric {
namespace {

constexpr std::size_t kLongestName = VEXO_SYSTEM_NAME_CAPACITY - 1;

// What some file system doesn't take in a file name.
constexpr std::string_view kUnfitLetters = "/\\:*?\"<>|";

constexpr std::string_view kFaultFunctions[] = {
    "*",
    "TQ_InitLib",
    "TQ_GetNumberOfLocalAdapters",
    "TQ_GetLocalHBAInfo",
    "TQ_ReadSaTable",
    "TQ_WriteSaTable",
    "TQ_RemoveSaTable",
    "TQ_ReadSaTableHeader",
    "TQ_WriteSaTableHeader",
    "TQ_ReadAccessControlTable",
    "TQ_WriteAccessControlTable",
    "TQ_WriteKeyTable",
    "TQ_syncSecurityConfig",
};

[[noreturn]] void Fail(const std::string &file, const toml::source_region &where,
                       const std::string &reason) {
  throw DescriptionError(file + ":" + std::to_string(where.begin.line) + ": " + reason);
}

std::string Quoted(std::string_view text) {
  return "'" + std::string(text) + "'";
}

// One table of the file, with the checks that every key goes through.
class Section {
 public:
  // title is how the table is written in the file. Refuses a table with a key that isn't known.
  Section(const std::string &file, const toml::table &table, std::string_view title,
          std::initializer_list<std::string_view> known);

  [[noreturn]] void Refuse(const toml::node &node, const std::string &reason) const {
    Fail(file_, node.source(), reason);
  }
  [[noreturn]] void Refuse(std::string_view key, const std::string &reason) const {
    const toml::node *node = Find(key);
    Refuse(node != nullptr ? *node : table_, reason);
  }

  [[nodiscard]] const toml::node *Find(std::string_view key) const { return table_.get(key); }
  [[nodiscard]] bool Flag(std::string_view key, bool absent) const;
  [[nodiscard]] std::optional<std::uint32_t> Number(std::string_view key, std::int64_t least) const;
  [[nodiscard]] std::optional<std::string> Text(std::string_view key) const;
  [[nodiscard]] std::string NeededText(std::string_view key) const;
  // The tables written under [[title]]; none when the key is absent.
  [[nodiscard]] std::vector<const toml::table *> Tables(std::string_view key,
                                                        std::string_view title) const;
  [[nodiscard]] Id8 Id(const toml::node &node) const;

 private:
  const std::string &file_;
  const toml::table &table_;
  std::string title_;
};

Section::Section(const std::string &file, const toml::table &table, std::string_view title,
                 std::initializer_list<std::string_view> known)
    : file_(file), table_(table), title_(title) {
  for (const auto &[key, node] : table) {
    if (std::find(known.begin(), known.end(), key.str()) != known.end()) continue;
    std::string list;
    for (const auto name : known)
      list += (list.empty() ? "" : ", ") + std::string(name);
    Fail(file, key.source(), "unknown key " + Quoted(key) + "; " + title_ + " has " + list);
  }
}

bool Section::Flag(std::string_view key, bool absent) const {
  const toml::node *node = Find(key);
  if (node == nullptr) return absent;
  if (!node->is_boolean()) Refuse(*node, Quoted(key) + " must be true or false");
  return *node->value_exact<bool>();
}

std::optional<std::uint32_t> Section::Number(std::string_view key, std::int64_t least) const {
  const toml::node *node = Find(key);
  if (node == nullptr) return std::nullopt;
  constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
  const auto value = node->value_exact<std::int64_t>();
  if (!value || *value < least || *value > kMost) {
    Refuse(*node, Quoted(key) + " must be a whole number from " + std::to_string(least) + " to " +
                      std::to_string(kMost));
  }
  return static_cast<std::uint32_t>(*value);
}

std::optional<std::string> Section::Text(std::string_view key) const {
  const toml::node *node = Find(key);
  if (node == nullptr) return std::nullopt;
  auto value = node->value_exact<std::string>();
  if (!value) Refuse(*node, Quoted(key) + " must be a string in quotes");
  return value;
}

std::string Section::NeededText(std::string_view key) const {
  auto value = Text(key);
  if (!value) Refuse(key, title_ + " needs a line " + std::string(key) + " = \"...\"");
  return *value;
}

std::vector<const toml::table *> Section::Tables(std::string_view key,
                                                 std::string_view title) const {
  std::vector<const toml::table *> tables;
  const toml::node *node = Find(key);
  if (node == nullptr) return tables;
  const toml::array *array = node->as_array();
  if (array == nullptr) Refuse(*node, "write each as a table of its own under " + Quoted(title));
  for (const toml::node &element : *array) {
    if (!element.is_table()) Refuse(element, "write each as a table under " + Quoted(title));
    tables.push_back(element.as_table());
  }
  return tables;
}

int HexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

Id8 Section::Id(const toml::node &node) const {
  const auto text = node.value_exact<std::string>();
  Id8 id{};
  bool good = text && text->size() == 2 * id.size();
  for (std::size_t i = 0; good && i < id.size(); ++i) {
    const int high = HexDigit((*text)[2 * i]);
    const int low = HexDigit((*text)[2 * i + 1]);
    good = high >= 0 && low >= 0;
    id[i] = static_cast<std::uint8_t>(good ? high * 16 + low : 0);
  }
  if (!good) Refuse(node, "an identity is 16 hexadecimal digits in quotes");
  return id;
}

// The text is well-formed UTF-8: no other gets through the reader of the file.
std::u16string ToUtf16(std::string_view text) {
  std::u16string units;
  for (std::size_t at = 0; at < text.size();) {
    const auto lead = static_cast<std::uint8_t>(text[at++]);
    const int more = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    std::uint32_t point = more == 0 ? lead : lead & (0x3Fu >> more);
    for (int i = 0; i < more && at < text.size(); ++i) {
      point = point << 6 | (static_cast<std::uint8_t>(text[at++]) & 0x3Fu);
    }
    if (point >= 0x10000) {
      units += static_cast<char16_t>(0xD7C0 + (point >> 10));
      point = 0xDC00 + (point & 0x3FF);
    }
    units += static_cast<char16_t>(point);
  }
  return units;
}

class Reader {
 public:
  explicit Reader(std::string file) : file_(std::move(file)) {}

  Description Read(const toml::table &root);

 private:
  Adapter ReadAdapter(const toml::table &table);
  Host ReadHost(const toml::table &table);
  [[nodiscard]] Fault ReadFault(const toml::table &table) const;
  void CheckName(const Section &section, const std::string &name);

  std::string file_;
  Description description_;
  std::set<std::string> names_;  // as the system tells files apart by them
  std::set<Id8> adapterIds_;
};

Description Reader::Read(const toml::table &root) {
  const Section top(file_, root, "the file", {"discovery", "host", "fault"});
  if (const toml::node *node = top.Find("discovery")) {
    if (!node->is_table()) top.Refuse(*node, "write it as a table under '[discovery]'");
    const Section discovery(file_, *node->as_table(), "[discovery]",
                            {"known_at_start", "delay_ms"});
    description_.knownAtStart = discovery.Flag("known_at_start", description_.knownAtStart);
    description_.delayMs = discovery.Number("delay_ms", 0).value_or(description_.delayMs);
  }
  for (const toml::table *table : top.Tables("host", "[[host]]")) {
    description_.hosts.push_back(ReadHost(*table));
  }
  for (const toml::table *table : top.Tables("fault", "[[fault]]")) {
    description_.faults.push_back(ReadFault(*table));
  }
  return std::move(description_);
}

void Reader::CheckName(const Section &section, const std::string &name) {
  if (name.empty() || name.size() > kLongestName) {
    section.Refuse("name",
                   "a host name has 1 to 31 characters, this one " + std::to_string(name.size()));
  }
  const auto unfit = [](char letter) {
    return letter < ' ' || letter > '~' || kUnfitLetters.find(letter) != std::string_view::npos;
  };
  if (std::any_of(name.begin(), name.end(), unfit)) {
    section.Refuse("name",
                   "a host name is part of a file name: printable ASCII characters but "
                   "none of / \\ : * ? \" < > |");
  }
  const std::string key = FileKey(name);
  if (key.empty()) section.Refuse("name", "this system has no file of that name; choose another");
  if (!names_.insert(key).second) {
    section.Refuse("name", "a host " + Quoted(name) + " is already described above");
  }
}

Host Reader::ReadHost(const toml::table &table) {
  const Section section(file_, table, "[[host]]",
                        {"name", "wide_name", "up", "excluded", "adapter"});
  Host host;
  host.name = section.NeededText("name");
  CheckName(section, host.name);
  host.wideName = ToUtf16(section.Text("wide_name").value_or(""));
  if (host.wideName.size() > kLongestName) {
    section.Refuse("wide_name", "a wide name has at most 31 UTF-16 units, this one " +
                                    std::to_string(host.wideName.size()));
  }
  if (host.wideName.find(u'\0') != std::u16string::npos) {
    section.Refuse("wide_name", "a wide name cannot contain a zero character");
  }
  host.up = section.Flag("up", true);
  host.excluded = section.Flag("excluded", false);
  for (const toml::table *adapter : section.Tables("adapter", "[[host.adapter]]")) {
    if (host.adapters.size() == VEXO_MAX_ADAPTERS) {
      section.Refuse(*adapter, "a host has at most 100 adapters");
    }
    host.adapters.push_back(ReadAdapter(*adapter));
  }
  return host;
}

Adapter Reader::ReadAdapter(const toml::table &table) {
  const Section section(file_, table, "[[host.adapter]]", {"id", "credential", "reach", "up"});
  Adapter adapter;
  const toml::node *id = section.Find("id");
  if (id == nullptr) section.Refuse("id", "[[host.adapter]] needs a line id = \"16 hex digits\"");
  adapter.id = section.Id(*id);
  if (!adapterIds_.insert(adapter.id).second) {
    section.Refuse(*id, "an adapter with this identity is already described above");
  }
  if (const toml::node *node = section.Find("credential")) adapter.credential = section.Id(*node);
  if (const toml::node *node = section.Find("reach")) {
    const toml::array *array = node->as_array();
    if (array == nullptr || array->size() > VEXO_MAX_REACH_IDS) {
      section.Refuse(*node, "'reach' must be a list of at most 5 identities");
    }
    for (const toml::node &element : *array)
      adapter.reachIds.push_back(section.Id(element));
  }
  adapter.up = section.Flag("up", true);
  return adapter;
}

Fault Reader::ReadFault(const toml::table &table) const {
  const Section section(file_, table, "[[fault]]",
                        {"host", "adapter", "function", "first_call", "count"});
  Fault fault;
  fault.host = section.NeededText("host");
  const auto &hosts = description_.hosts;
  const auto host = std::find_if(hosts.begin(), hosts.end(), [&](const Host &candidate) {
    return candidate.name == fault.host;
  });
  if (host == hosts.end()) {
    section.Refuse("host", "no host " + Quoted(fault.host) + " is described in this file");
  }
  fault.adapter = section.Number("adapter", 0);
  if (fault.adapter && *fault.adapter >= host->adapters.size()) {
    section.Refuse("adapter", Quoted(fault.host) + " has " + std::to_string(host->adapters.size()) +
                                  " adapters, counted from 0");
  }
  fault.function = section.NeededText("function");
  if (std::count(std::begin(kFaultFunctions), std::end(kFaultFunctions), fault.function) == 0) {
    section.Refuse("function", Quoted(fault.function) +
                                   " is none of the TQ_ functions of kvrapi/tqlink.h; \"*\" means "
                                   "any of them");
  }
  fault.firstCall = section.Number("first_call", 1).value_or(1);
  fault.count = section.Number("count", 1);
  return fault;
}

}  // namespace

std::filesystem::path DescriptionFile(const std::filesystem::path &folder) {
  return folder / "fabric.toml";
}

std::string ReadDescriptionText(const std::filesystem::path &file) {
  std::error_code ignored;
  auto text = std::filesystem::is_regular_file(file, ignored) ? ReadContent(file) : std::nullopt;
  if (!text) {
    throw DescriptionError(file.string() +
                           ":1: cannot be read; name the folder of a fabric, or make one with "
                           "'kvrctl fabric new'");
  }
  return *std::move(text);
}

Description ParseDescription(std::string_view text, const std::string &file) {
  try {
    return Reader(file).Read(toml::parse(text, file));
  } catch (const toml::parse_error &error) {
    Fail(file, error.source(), std::string(error.description()));
  }
}

Description LoadDescription(const std::filesystem::path &folder) {
  const auto file = DescriptionFile(folder);
  return ParseDescription(ReadDescriptionText(file), file.string());
}

}  // namespace fabric
