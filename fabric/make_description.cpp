#include <array>
#include <random>
#include <stdexcept>
#include <string_view>

#include "fabric/description.h"

namespace fabric {
namespace {

constexpr std::uint32_t kMostHosts = 10000;
constexpr std::uint32_t kSerialMask = 0xFFFFFF;

struct Role {
  std::string_view name;
  std::u16string_view wideName;
};

constexpr std::array<Role, 6> kRoles = {{
    {"db", u"Datenbank-Größe"},
    {"mail", u"Почта"},
    {"web", u"Ιστός"},
    {"backup", u"バックアップ"},
    {"build", u"build \U0001F3D7"},
    {"archive", u""},
}};

Id8 ToId(std::uint64_t value) {
  Id8 id{};
  for (std::size_t i = id.size(); i-- > 0; value >>= 8)
    id[i] = static_cast<std::uint8_t>(value);
  return id;
}

// A world-wide port name: naming authority 2 with the port's number, a locally administered
// manufacturer's code, and the serial number of the adapter card.
Id8 PortName(std::uint32_t port, std::uint32_t serial) {
  return ToId(0x2000'025A'4E00'0000ull | std::uint64_t{port} << 48 | (serial & kSerialMask));
}

std::string FourDigits(std::uint32_t number) {
  const std::string digits = std::to_string(number);
  return digits.size() < 4 ? std::string(4 - digits.size(), '0') + digits : digits;
}

// One card of two ports: the first on the one switched fabric, the second on the other.
void AddCard(Host &host, std::uint32_t serial, const std::array<Id8, 2> &fabrics,
             std::mt19937_64 &random) {
  for (std::uint32_t port = 0; port < fabrics.size(); ++port) {
    host.adapters.push_back({PortName(port, serial), ToId(random()), {fabrics[port]}, true});
  }
}

}  // namespace

Description MakeDescription(std::uint32_t hostCount, std::uint64_t seed) {
  if (hostCount < 1 || hostCount > kMostHosts) {
    throw std::invalid_argument("a network has 1 to 10000 hosts, not " + std::to_string(hostCount));
  }
  std::mt19937_64 random(seed);
  const auto fabricSerial = static_cast<std::uint32_t>(random());
  const std::array<Id8, 2> fabrics = {PortName(0x10, fabricSerial), PortName(0x11, fabricSerial)};
  auto serial = static_cast<std::uint32_t>(random());

  Description description;
  for (std::uint32_t number = 1; number <= hostCount; ++number) {
    const Role &role = kRoles[static_cast<std::size_t>(random() % kRoles.size())];
    const std::string digits = FourDigits(number);
    Host host;
    host.name = std::string(role.name) + "-" + digits;
    if (!role.wideName.empty()) {
      host.wideName = std::u16string(role.wideName) + u'-';
      host.wideName.append(digits.begin(), digits.end());
    }
    const std::uint32_t cards = random() % 8 == 0 ? 2 : 1;
    for (std::uint32_t card = 0; card < cards; ++card)
      AddCard(host, serial++, fabrics, random);
    description.hosts.push_back(std::move(host));
  }
  return description;
}

}  // namespace fabric
