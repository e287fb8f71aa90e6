#include <algorithm>
#include <array>
#include <iterator>

#include <toml++/toml.h>

#include "fabric/description.h"
#include "fabric/description_text.h"
#include "fabric/platform_files.h"

namespace fabric {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

std::string Quoted(const Id8 &id) {
  std::string text = "\"";
  for (const std::uint8_t byte : id) {
    text += kHexDigits[byte >> 4];
    text += kHexDigits[byte & 0xF];
  }
  return text + '"';
}

// A TOML string of one code point; what has a meaning of its own in such a string is escaped.
std::string Escaped(std::uint32_t point) {
  if (point == '"' || point == '\\') return {'\\', static_cast<char>(point)};
  if (point < 0x20 || point == 0x7F) {
    return std::string("\\u00") + kHexDigits[point >> 4] + kHexDigits[point & 0xF];
  }
  if (point < 0x80) return {static_cast<char>(point)};
  const int more = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
  std::string text;
  text += static_cast<char>((0xF0u << (3 - more) & 0xFF) | point >> 6 * more);
  for (int i = more - 1; i >= 0; --i)
    text += static_cast<char>(0x80 | (point >> 6 * i & 0x3F));
  return text;
}

// An unpaired surrogate becomes what no reader of UTF-8 takes, and so is refused before it is
// stored.
std::string Quoted(std::u16string_view units) {
  std::string text = "\"";
  for (std::size_t i = 0; i < units.size(); ++i) {
    std::uint32_t point = units[i];
    const bool pair = point >= 0xD800 && point < 0xDC00 && i + 1 < units.size() &&
                      units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000;
    if (pair) point = 0x10000 + ((point & 0x3FF) << 10) + (units[++i] & 0x3FFu);
    text += Escaped(point);
  }
  return text + '"';
}

std::string Quoted(std::string_view text) {
  std::u16string units;
  for (const char letter : text)
    units += static_cast<char16_t>(static_cast<unsigned char>(letter));
  return Quoted(units);
}

void Append(std::string &text, std::string_view key, const std::string &value) {
  text.append(key).append(" = ").append(value).append("\n");
}

void Append(std::string &text, const Adapter &adapter) {
  text += "\n[[host.adapter]]\n";
  Append(text, "id", Quoted(adapter.id));
  if (adapter.credential) Append(text, "credential", Quoted(*adapter.credential));
  std::string reach;
  for (const Id8 &id : adapter.reachIds)
    reach += (reach.empty() ? "" : ", ") + Quoted(id);
  if (!reach.empty()) Append(text, "reach", "[" + reach + "]");
  if (!adapter.up) Append(text, "up", "false");
}

void Append(std::string &text, const Host &host) {
  text += "\n[[host]]\n";
  Append(text, "name", Quoted(host.name));
  if (!host.wideName.empty()) Append(text, "wide_name", Quoted(host.wideName));
  if (!host.up) Append(text, "up", "false");
  if (host.excluded) Append(text, "excluded", "true");
  for (const Adapter &adapter : host.adapters)
    Append(text, adapter);
}

void Append(std::string &text, const Fault &fault) {
  text += "\n[[fault]]\n";
  Append(text, "host", Quoted(fault.host));
  if (fault.adapter) Append(text, "adapter", std::to_string(*fault.adapter));
  Append(text, "function", Quoted(fault.function));
  Append(text, "first_call", std::to_string(fault.firstCall));
  if (fault.count) Append(text, "count", std::to_string(*fault.count));
}

void Store(const std::filesystem::path &file, const std::string &text) {
  if (const auto error = ReplaceContent(file, text.data(), text.size())) {
    throw std::runtime_error(file.string() + " cannot be written: " + error.message());
  }
}

// Held while fabric.toml is written, so that no edit is lost.
FileLock LockDescription(const std::filesystem::path &folder) {
  return FileLock(folder / "fabric.lock");
}

void CheckLock(const FileLock &lock, const std::filesystem::path &folder) {
  if (!lock.Error()) return;
  throw std::runtime_error((folder / "fabric.lock").string() +
                           " cannot be locked: " + lock.Error().message());
}

// Positions count lines and, in the line, code points, both from 1.
std::size_t OffsetOf(std::string_view text, toml::source_position position) {
  std::size_t at = 0;
  for (toml::source_index line = 1; line < position.line; ++line)
    at = text.find('\n', at) + 1;
  const auto continues = [&] { return at < text.size() && (text[at] & 0xC0) == 0x80; };
  for (toml::source_index column = 1; column < position.column && at < text.size(); ++column) {
    ++at;
    while (continues())
      ++at;
  }
  return at;
}

// Adds up = VALUE after the host's name: in an inline table behind it, else on a line of its own.
void InsertUp(std::string &text, const toml::table &host, const std::string &value) {
  const toml::source_region name = host.get("name")->source();
  const std::size_t end = OffsetOf(text, name.end);
  if (host.is_inline()) {
    text.insert(end, ", up = " + value);
    return;
  }
  const std::size_t line = OffsetOf(text, {name.begin.line, 1});
  const std::string indent = text.substr(line, text.find_first_not_of(" \t", line) - line);
  const std::size_t next = std::min(text.find('\n', end), text.size());
  const bool carriageReturn = next > 0 && text[next - 1] == '\r';
  text.insert(carriageReturn ? next - 1 : next,
              (carriageReturn ? "\r\n" : "\n") + indent + "up = " + value);
}

void ReplaceUp(std::string &text, const toml::node &node, bool up) {
  const std::string_view before = up ? "false" : "true";
  const std::size_t at = OffsetOf(text, node.source().begin);
  if (text.compare(at, before.size(), before) != 0) return;
  text.replace(at, before.size(), up ? "true" : "false");
}

}  // namespace

void SaveDescription(const std::filesystem::path &folder, const Description &description) {
  std::string text =
      "# A simulated storage network: its hosts, their adapters, the faults to play.\n";
  text += "\n[discovery]\n";
  Append(text, "known_at_start", description.knownAtStart ? "true" : "false");
  Append(text, "delay_ms", std::to_string(description.delayMs));
  for (const Host &host : description.hosts)
    Append(text, host);
  for (const Fault &fault : description.faults)
    Append(text, fault);

  const auto file = DescriptionFile(folder);
  ParseDescription(text, file.string());
  std::filesystem::create_directories(folder);
  const FileLock lock = LockDescription(folder);
  CheckLock(lock, folder);
  Store(file, text);
}

void SetHostUp(const std::filesystem::path &folder, const std::string &host, bool up) {
  const auto file = DescriptionFile(folder);
  const FileLock lock = LockDescription(folder);
  std::string text = ReadDescriptionText(file);
  CheckLock(lock, folder);
  const auto hosts = ParseDescription(text, file.string()).hosts;
  const auto found = std::find_if(hosts.begin(), hosts.end(),
                                  [&](const Host &candidate) { return candidate.name == host; });
  if (found == hosts.end()) throw std::out_of_range("no host '" + host + "' in " + file.string());
  if (found->up == up) return;

  const auto index = static_cast<std::size_t>(found - hosts.begin());
  const toml::table root = toml::parse(text, file.string());
  const toml::table &table = *root.get("host")->as_array()->get(index)->as_table();
  if (const toml::node *node = table.get("up")) {
    ReplaceUp(text, *node, up);
  } else {
    InsertUp(text, table, up ? "true" : "false");
  }
  if (ParseDescription(text, file.string()).hosts[index].up != up) {
    throw DescriptionError(file.string() + ":" + std::to_string(table.source().begin.line) +
                           ": this way of writing 'up' cannot be edited; change it by hand");
  }
  Store(file, text);
}

}  // namespace fabric
