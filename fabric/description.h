// What a simulated storage network consists of, and its file fabric.toml.
//
// A fabric is a folder. fabric.toml names the hosts, their adapters and the faults to play;
// tables/HOST.satable holds the image that the host's adapters keep. This room reads, checks,
// writes and edits the description; it knows nothing of tables.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace fabric {

using Id8 = std::array<std::uint8_t, 8>;

struct Adapter {
  Id8 id{};
  std::optional<Id8> credential;  // none: the adapter answers to 8 zero bytes
  std::vector<Id8> reachIds;      // at most 5; hosts that share one can reach each other
  bool up = true;

  bool operator==(const Adapter &) const = default;
};

struct Host {
  std::string name;         // 1 to 31 ASCII characters, unique; also the name of its table file
  std::u16string wideName;  // 0 to 31 units; empty: the host has no UTF-16 name
  bool up = true;           // false: every adapter fails
  bool excluded = false;    // delivered with its excluded word set
  std::vector<Adapter> adapters;  // at most 100

  bool operator==(const Host &) const = default;
};

// Lets outside calls fail: those numbered firstCall to firstCall + count - 1 (from 1) of one
// function at one host, counted for each adapter by itself when an adapter is named, else over all
// of them.
struct Fault {
  std::string host;
  std::optional<std::uint32_t> adapter;  // ordinal from 0; none: any
  std::string function;                  // "TQ_ReadSaTableHeader", ...; "*": any
  std::uint32_t firstCall = 1;
  std::optional<std::uint32_t> count;  // none: from then on

  bool operator==(const Fault &) const = default;
};

struct Description {
  bool knownAtStart = true;    // false: systems come later, from the discovery library's own thread
  std::uint32_t delayMs = 50;  // how much later
  std::vector<Host> hosts;
  std::vector<Fault> faults;

  bool operator==(const Description &) const = default;
};

// A description that cannot be used; what() is "FILE:LINE: reason".
class DescriptionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads and checks FOLDER/fabric.toml. Throws DescriptionError.
Description LoadDescription(const std::filesystem::path &folder);

// Writes FOLDER/fabric.toml (the folder is made if absent). Throws std::runtime_error with the
// cause.
void SaveDescription(const std::filesystem::path &folder, const Description &description);

// Marks one host up or down in FOLDER/fabric.toml, leaving every other line, comments included, as
// it is. Throws DescriptionError for a file that cannot be used and std::out_of_range for no such
// host.
void SetHostUp(const std::filesystem::path &folder, const std::string &host, bool up);

// A plausible network of hostCount hosts (1 to 10000): two-port adapters on two switched fabrics,
// distinct names, identities and credentials, the same for the same seed.
Description MakeDescription(std::uint32_t hostCount, std::uint64_t seed);

}  // namespace fabric
