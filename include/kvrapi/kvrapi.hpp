// kvrapi for C++20: the library's C interface (kvrapi.h) as values, vectors, UTF-8 and exceptions.
//
//   kvrapi::Session session;                       // this host's view, its discovery done
//   const kvrapi::Group sales = session.CreateGroup("sales", session.Members().front(), 4).group;
//   for (const kvrapi::System &host : sales.AvailableServers()) sales.AddServer(host);
//
// 1. What each function does, and when it refuses, is said in kvrapi.h. Everything that is no
//    success is thrown as Error; 5014, a success with fewer reserved slots than asked for, is a
//    return value.
// 2. Systems and groups are small values to copy and keep. They become stale when what they stand
//    for ends: all of them with a discovery or a hand-over of the MSC's role, a group also when it
//    or the configuration is deleted. IsStale tells; using a stale one throws and never reaches the
//    library.
// 3. Names are UTF-8. A host has an 8-bit name and a UTF-16 name, neither made from the other. A
//    group has one name, which the tables hold in both forms.
// 4. The library's state belongs to the process, so all sessions of a process share it, and what is
//    kept here about it is shared by what one program or shared library is linked from: use the
//    interface from one of them, on one thread at a time, and make no change through kvrapi.h
//    beside it.
#ifndef KVRAPI_KVRAPI_HPP
#define KVRAPI_KVRAPI_HPP

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kvrapi/codes.hpp"
#include "kvrapi/kvrapi.h"
#include "kvrapi/text.hpp"

namespace kvrapi {

class Error;
class Session;

// A discovered host; the local host is never one.
class System {
 public:
  // True when a discovery or a hand-over came after it was given out: everything below then throws.
  [[nodiscard]] bool IsStale() const noexcept;

  // The name by which people call the host: the 8-bit one, or the UTF-16 one where that is empty.
  [[nodiscard]] std::string Name() const;
  [[nodiscard]] std::string NarrowName() const;  // the 8-bit name
  [[nodiscard]] std::string WideName() const;    // the UTF-16 name, or empty

  [[nodiscard]] bool IsInAcg() const;
  [[nodiscard]] bool HoldsSlot() const;  // as a group's client, the MSC or a backup MSC
  [[nodiscard]] bool CanDiscoverAll() const;

  // The handle for a call to kvrapi.h.
  [[nodiscard]] KVR_SYSTEM Handle() const;

  friend bool operator==(const System &, const System &) = default;

 private:
  friend class Group;
  friend class Session;
  friend struct Lists;
  explicit System(KVR_SYSTEM handle) noexcept;

  KVR_SYSTEM handle_;
  std::uint64_t generation_;  // of the discovery that it is from
};

// A host that a change could not be made on.
struct FailedHost {
  System system;
  std::string name;
};

// What the library refused or failed in.
class Error : public std::exception {
 public:
  // doing says what was asked, as "adding to the ACG".
  Error(const std::string &doing, std::uint32_t code, std::vector<FailedHost> failedHosts = {});

  [[nodiscard]] std::uint32_t Code() const noexcept { return code_; }
  [[nodiscard]] const char *Name() const noexcept { return TextOf(code_).name; }
  [[nodiscard]] const char *Meaning() const noexcept { return meaning_.c_str(); }  // a clause
  [[nodiscard]] bool IsStale() const noexcept { return stale_; }  // 5007: a stale value was used

  // Those that a change of many hosts could not write (5008; of a group's deletion, any code).
  [[nodiscard]] const std::vector<FailedHost> &FailedHosts() const noexcept { return failed_; }

  // A whole sentence: what was asked, the meaning, the code and its name.
  [[nodiscard]] const char *what() const noexcept override { return what_.c_str(); }

  // The error of using a value of this kind, as "system", after its time.
  static Error Stale(const std::string &kind);

  // The error of a group name that is no text (5015).
  static Error NotUtf8(const std::string &doing);

 private:
  Error(const std::string &doing, std::uint32_t code, std::string meaning, bool stale,
        std::vector<FailedHost> failedHosts);

  std::uint32_t code_;
  std::string meaning_;
  bool stale_;
  std::vector<FailedHost> failed_;
  std::string what_;
};

// Slots from which groups are made.
struct SlotCount {
  std::uint32_t free;
  std::uint32_t used;
};

struct CreatedGroup;

// An access sub-group: one client, the servers that it may reach, and child groups.
class Group {
 public:
  // True when the group has been deleted, or a discovery or a hand-over came after it was given
  // out: everything below then throws.
  [[nodiscard]] bool IsStale() const noexcept;

  [[nodiscard]] std::string Name() const;  // empty where the client's table could not be read
  [[nodiscard]] bool IsOffline() const;    // it stands for a client that was not found
  [[nodiscard]] std::optional<System> Client() const;  // none for an offline group
  [[nodiscard]] std::vector<System> Servers() const;
  [[nodiscard]] std::vector<Group> Children() const;

  // The hosts that could be added as servers.
  [[nodiscard]] std::vector<System> AvailableServers() const;

  // The slots from which a group below this one would be made; 0 and 0 also where the client's
  // table could not be read.
  [[nodiscard]] SlotCount Slots() const;

  // Whether a host is a client, or a server, of a group anywhere below.
  [[nodiscard]] bool HasClientBelow(const System &system) const;
  [[nodiscard]] bool HasServerBelow(const System &system) const;

  // Makes a group below; else as Session::CreateGroup.
  [[nodiscard]] CreatedGroup CreateGroup(std::string_view name, const System &client,
                                         std::uint32_t reserve = 0) const;

  // Gives it another name in both forms. That the client's table did not take it is not reported.
  void Rename(std::string_view name) const;

  // When this throws, IsStale tells whether the group is gone all the same.
  void Delete() const;

  void AddServer(const System &system) const;
  void RemoveServer(const System &system) const;

  // Sets aside that many slots in all for groups below; returns how many there are now, fewer where
  // fewer were free.
  [[nodiscard]] std::uint32_t SetReserve(std::uint32_t slots) const;

  // Hands the group, with all that hangs below it, to another client.
  void SetClient(const System &system) const;

  // The handle for a call to kvrapi.h.
  [[nodiscard]] KVR_GROUP Handle() const;

  friend bool operator==(const Group &, const Group &) = default;

 private:
  friend class Session;
  friend struct Lists;
  explicit Group(KVR_GROUP handle);

  KVR_GROUP handle_;
  std::uint64_t serial_;  // which of the groups that were ever known by this handle it is
};

struct CreatedGroup {
  Group group;
  std::uint32_t reserved;  // slots set aside: as asked, or what was free
};

// This host's view of the configuration. The first session of a process loads this host's adapters,
// table and role.
class Session {
 public:
  struct DeferDiscovery {};

  // Initializes the library and discovers the hosts, waiting until that is complete. Throws Error
  // (5002) where this host has no adapter.
  Session();

  // Leaves the discovery to a later call; until then there are no systems and no groups.
  explicit Session(DeferDiscovery);

  // Builds the picture afresh and waits until it is complete. Every system and group is stale then.
  void Discover();

  // As above without waiting: done is called once, on this thread or another, when the picture is
  // complete; not at all where another discovery has begun by then. It must not throw and not
  // discover. Until it has returned, nothing else may be called but another discovery.
  void Discover(std::function<void()> done);

  // True after a discovery, until a hand-over has made another one necessary.
  [[nodiscard]] bool HasDiscovered() const noexcept;

  // This host
  [[nodiscard]] bool IsSecured() const;  // a configuration is active
  [[nodiscard]] bool HoldsSlot() const;  // as client, MSC or backup MSC
  [[nodiscard]] bool IsMsc() const;
  [[nodiscard]] bool IsBackupMsc() const;  // as it was when the library was loaded

  // The configuration
  [[nodiscard]] std::int32_t CreateConfiguration();  // returns the slot of this host, 0 to 245
  void DeleteConfiguration();
  void RenewKeys();
  void Synchronize();
  [[nodiscard]] bool IsSwitchAccessOn() const;
  void SwitchAccess(bool on);  // nothing is written where it is so already

  // Writes the state to every host even where it is the stored one: 'off' where off is stored is on
  // everywhere for a moment.
  void RewriteSwitchAccess(bool on);

  // Hosts
  [[nodiscard]] std::vector<System> Members() const;    // of the ACG
  [[nodiscard]] std::vector<System> Outsiders() const;  // throws 5000 where they are withheld
  [[nodiscard]] std::vector<System> BackupMscs() const;
  void AddToAcg(const System &system);
  void RemoveFromAcg(const System &system);
  void AddBackupMsc(const System &system);
  void RemoveBackupMsc(const System &system);

  // The hosts that earlier changes could not write; their marks are cleared. An Error of a change
  // that marks hosts has taken them already.
  [[nodiscard]] std::vector<System> TakeFailedSystems();

  // Succession
  void HandOver(const System &backup);  // every system and group is stale then: discover again
  void TakeOver();                      // on a backup MSC; seen when the library is loaded again

  // Groups at the top level
  [[nodiscard]] std::vector<Group> Groups() const;
  [[nodiscard]] SlotCount Slots() const;

  // name: at most 31 UTF-16 units; reserve: slots to set aside for groups below.
  [[nodiscard]] CreatedGroup CreateGroup(std::string_view name, const System &client,
                                         std::uint32_t reserve = 0);
};

}  // namespace kvrapi

#include "kvrapi/kvrapi_inline.hpp"

#endif
