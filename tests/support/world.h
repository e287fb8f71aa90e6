// A simulated network for the tests of the library, with this process as one host of it after
// another, and the library's model as text, by which two states are compared. It also brings what
// every such test looks into.
//
// A line describes a host: "A 10=1 11=14 s5" is host A, whose table names the group "a", has the
// roleFlags 0x1 at slot 10 and 0x14 at 11, and serves slot 5. "U" alone holds no table, "X excluded
// s5" is passed over by discovery. Each name is also the UTF-16 name.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include "kvrapi/kvrapi.h"

#include "fabric/network.h"
#include "library_walk.h"
#include "model/group_record.h"
#include "model/group_search.h"
#include "model/local_state.h"
#include "model/system_registry.h"

// A literal in the 16-bit characters of the interface.
#if defined(_WIN32)
#define WIDE(text) L##text
#else
#define WIDE(text) u##text
#endif

namespace kvrtest {

std::vector<std::string> Words(const std::string &text);
bool Same(const SaTable &a, const SaTable &b);  // byte for byte
SaTable MakeImage(const std::string &line);     // without keys

// The checksum (FNV-1a) of some bytes and one more; kNoBytes is that of none.
constexpr std::uint64_t kNoBytes = 0xcbf29ce484222325u;
constexpr std::uint64_t Checksum(std::uint64_t sum, std::uint8_t byte) {
  return (sum ^ byte) * 0x100000001b3u;
}

using fuzz::ForgetEverything;
using fuzz::g_now;

class World {
 public:
  // Hosts that all reach each other, with so many adapters, of which every second one answers to no
  // credential. Unless they are known at the start, an event announces them later.
  explicit World(const std::vector<std::string> &lines, unsigned adapters = 1, bool known = true);
  ~World();
  fabric::Network *operator->() const { return network_.get(); }

  void Use() const;  // where there are several worlds, of which the last one made is in use
  void Plant(const std::string &line) const;
  std::uint32_t Start(const std::string &host) const;  // a new process on the host; KVR_Initialize
  std::uint32_t As(const std::string &host) const;     // the same, with a discovery, and no calls

  // The calls of TQ_ functions, or all, since the last look: "Function:HOST", with the ordinal of
  // an adapter above 0, and "!" for a failure.
  std::string Calls(bool all = false) const;

 private:
  std::shared_ptr<fabric::Network> network_;
};

// The record of a host, and the group of a client; null where there is none. "?": Offline Client.
KVR_SYSTEM System(const std::string &host);
KVR_GROUP Group(const std::string &client);

template <class Handle>
using ListOf = std::function<std::uint32_t(Handle *handles, std::uint32_t *count)>;

// Expects a function to deliver all these, or the first ones that fit, and to refuse null pointers.
template <class Handle>
void ExpectFirstThatFit(const std::vector<Handle> &all, std::uint32_t moreCode,
                        const ListOf<Handle> &list) {
  for (std::uint32_t capacity = 0, count; capacity < all.size() + 2; ++capacity) {
    const std::size_t fitting = std::min<std::size_t>(capacity, all.size());
    std::vector<Handle> found(all.size() + 2), wanted(all.size() + 2);
    std::copy_n(all.begin(), fitting, wanted.begin());
    EXPECT_EQ(list(found.data(), &(count = capacity)), capacity < all.size() ? moreCode : KVR_OK);
    EXPECT_TRUE(found == wanted && count == fitting) << capacity;
    EXPECT_EQ(list(nullptr, &(count = 1)), KVR_ERR_INVALID_HANDLE);
    EXPECT_EQ(list(found.data(), nullptr) + count, KVR_ERR_INVALID_HANDLE + 1);
  }
}

// Creates a client's group, named after it in small letters, below another client's, or "".
std::uint32_t Create(const std::string &parent, const std::string &client, std::uint32_t reserve);

// The tree in list order, each group by client and slot, with {servers} and (children).
std::string Tree();

// All that the model says of this host, systems and groups, whatever the age of the groups.
std::string Model(bool groupNames = true);

}  // namespace kvrtest
