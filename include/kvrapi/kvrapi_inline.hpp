// What kvrapi.hpp promises, carried out over the C interface. Include kvrapi.hpp, not this.
#ifndef KVRAPI_KVRAPI_INLINE_HPP
#define KVRAPI_KVRAPI_INLINE_HPP

#include "kvrapi/kvrapi.hpp"

namespace kvrapi {
namespace detail {

// What the values given out are checked against.
struct State {
  std::atomic<std::uint64_t> generation{0};  // discoveries and hand-overs so far
  std::atomic<bool> discovered{false};
  std::unordered_map<KVR_GROUP, std::uint64_t> serials;  // of the groups given out and alive
  std::uint64_t lastSerial = 0;

  std::mutex mutex;              // held while a discovery begins, and while its end is announced
  std::uintptr_t discovery = 0;  // the number of the one begun last
  std::function<void()> done;    // of that one
};

// Never destroyed: a discovery may end while the process does.
inline State &TheState() {
  static State &state = *new State;
  return state;
}

inline void VoidHandles() {
  State &state = TheState();
  ++state.generation;
  state.discovered = false;
  state.serials.clear();
}

inline void Require(const char *doing, std::uint32_t code) {
  if (code != KVR_OK) throw Error(doing, code);
}

inline constexpr std::uint32_t kLongestName = 32;  // exports end only shorter ones with a zero

// The name that an export gives, with its result.
template <class Character, class Handle>
std::pair<std::basic_string<Character>, std::uint32_t> ReadName(
    std::uint32_t (*read)(Handle, Character *, std::uint32_t) noexcept, Handle handle) {
  std::array<Character, kLongestName + 1> buffer{};
  const std::uint32_t code = read(handle, buffer.data(), kLongestName);
  return {buffer.data(), code};
}

// A name for the library, which takes it for ended at a zero. Throws Error (5015).
inline WideString WideNameOf(const char *doing, std::string_view name) {
  const auto units = Utf16Of(name);
  if (!units || name.find('\0') != std::string_view::npos) throw Error::NotUtf8(doing);
  return *units;
}

// Every handle that a listing export gives; room for count of them is tried first.
template <class Handle, class List>
std::vector<Handle> ReadHandles(const char *doing, std::uint32_t count, std::uint32_t more,
                                const List &list) {
  for (;; count = count * 2 + 8) {
    std::vector<Handle> handles(count);
    std::uint32_t stored = count;
    const std::uint32_t code = list(handles.data(), &stored);
    if (code == more) continue;
    Require(doing, code);
    handles.resize(stored);
    return handles;
  }
}

inline std::vector<KVR_GROUP> ReadChildren(KVR_GROUP parent) {
  return ReadHandles<KVR_GROUP>("listing the groups", KVR_GetChildAsgCount(parent),
                                KVR_ERR_MORE_GROUPS,
                                [parent](KVR_GROUP *groups, std::uint32_t *count) {
                                  return KVR_GetChildAsgs(parent, groups, count);
                                });
}

// Makes the values of groups that are no more in the tree stale, the Offline Client groups among
// them that left it with their last child.
inline void ForgetDeadGroups() {
  std::unordered_set<KVR_GROUP> alive;
  std::vector<KVR_GROUP> level = ReadChildren(nullptr);
  while (!level.empty()) {
    const KVR_GROUP group = level.back();
    level.pop_back();
    alive.insert(group);
    for (const KVR_GROUP child : ReadChildren(group))
      level.push_back(child);
  }
  std::erase_if(TheState().serials,
                [&alive](const auto &group) { return alive.count(group.first) == 0; });
}

}  // namespace detail

// Makes values of the handles that the listing exports give.
struct Lists {
  template <class List>
  static std::vector<System> Systems(const char *doing, std::uint32_t count, const List &list) {
    std::vector<System> systems;
    for (KVR_SYSTEM handle :
         detail::ReadHandles<KVR_SYSTEM>(doing, count, KVR_ERR_MORE_SYSTEMS, list)) {
      systems.push_back(System(handle));
    }
    return systems;
  }

  static std::vector<Group> Groups(KVR_GROUP parent) {
    std::vector<Group> groups;
    for (KVR_GROUP handle : detail::ReadChildren(parent))
      groups.push_back(Group(handle));
    return groups;
  }

  // The marks of what is stored are cleared, so that no second try would find it again.
  static std::vector<System> Failed() {
    std::vector<System> systems;
    std::uint32_t code = KVR_ERR_MORE_SYSTEMS;
    while (code == KVR_ERR_MORE_SYSTEMS) {
      constexpr std::uint32_t kRoom = 64;
      std::array<KVR_SYSTEM, kRoom> handles{};
      std::uint32_t count = kRoom;
      code = KVR_GetLastOpFailedServers(handles.data(), &count);
      for (std::uint32_t i = 0; i < count; ++i)
        systems.push_back(System(handles[i]));
    }
    detail::Require("listing the hosts that failed", code);
    return systems;
  }

  // Throws Error with the hosts that failed in a change that the library makes to many. A group's
  // deletion marks hosts also where it goes on to end in another code than 5008.
  static void RequireAll(const char *doing, std::uint32_t code) {
    if (code == KVR_OK) return;
    std::vector<FailedHost> failed;
    for (const System &system : Failed())
      failed.push_back({system, system.Name()});
    throw Error(doing, code, std::move(failed));
  }

  // A name beyond ASCII goes through the UTF-16 form, which alone can hold it.
  static CreatedGroup Create(KVR_GROUP parent, std::string_view name, const System &client,
                             std::uint32_t reserve) {
    constexpr char kDoing[] = "creating a group";
    const WideString wide = detail::WideNameOf(kDoing, name);
    KVR_GROUP created = nullptr;
    const std::uint32_t code =
        IsAscii(name)
            ? KVR_CreateAsgA(parent, std::string(name).c_str(), client.Handle(), &reserve, &created)
            : KVR_CreateAsgW(parent, wide.c_str(), client.Handle(), &reserve, &created);
    if (code != KVR_ERR_RESERVED_COUNT_REDUCED) detail::Require(kDoing, code);
    return {Group(created), reserve};
  }
};

// Errors

inline Error::Error(const std::string &doing, std::uint32_t code,
                    std::vector<FailedHost> failedHosts)
    : Error(doing, code, TextOf(code).meaning, false, std::move(failedHosts)) {}

inline Error::Error(const std::string &doing, std::uint32_t code, std::string meaning, bool stale,
                    std::vector<FailedHost> failedHosts)
    : code_(code), meaning_(std::move(meaning)), stale_(stale), failed_(std::move(failedHosts)) {
  what_ = doing + ": " + meaning_ + " (" + std::to_string(code_) + " " + TextOf(code_).name + ")";
  for (std::size_t i = 0; i < failed_.size(); ++i)
    what_ += (i == 0 ? "; not written: " : ", ") + failed_[i].name;
}

inline Error Error::Stale(const std::string &kind) {
  return Error(
      "using a " + kind, KVR_ERR_INVALID_HANDLE,
      "the " + kind + " is from before a discovery, a hand-over or its deletion; list it anew",
      true, {});
}

inline Error Error::NotUtf8(const std::string &doing) {
  return Error(doing, KVR_ERR_INVALID_NAME, "a group name is UTF-8 without a zero", false, {});
}

// Systems

inline System::System(KVR_SYSTEM handle) noexcept
    : handle_(handle), generation_(detail::TheState().generation) {}

inline bool System::IsStale() const noexcept {
  return generation_ != detail::TheState().generation;
}

inline KVR_SYSTEM System::Handle() const {
  if (IsStale()) throw Error::Stale("system");
  return handle_;
}

inline std::string System::NarrowName() const {
  const auto [name, code] = detail::ReadName<char>(KVR_GetSystemNameA, Handle());
  detail::Require("reading a host's name", code);
  return Utf8OfBytes(name);
}

inline std::string System::WideName() const {
  const auto [name, code] = detail::ReadName<KVR_WCHAR>(KVR_GetSystemNameW, Handle());
  detail::Require("reading a host's name", code);
  return Utf8Of(name);
}

inline std::string System::Name() const {
  std::string name = NarrowName();
  return name.empty() ? WideName() : name;
}

inline bool System::IsInAcg() const {
  return KVR_IsServer(Handle()) != 0;
}

inline bool System::HoldsSlot() const {
  return KVR_IsClient(Handle()) != 0;
}

inline bool System::CanDiscoverAll() const {
  return KVR_CanDiscoverAllSystems(Handle()) != 0;
}

// Groups

inline Group::Group(KVR_GROUP handle) : handle_(handle) {
  detail::State &state = detail::TheState();
  const auto [at, isNew] = state.serials.try_emplace(handle, state.lastSerial + 1);
  state.lastSerial += isNew ? 1 : 0;
  serial_ = at->second;
}

inline bool Group::IsStale() const noexcept {
  const auto &serials = detail::TheState().serials;
  const auto found = serials.find(handle_);
  return found == serials.end() || found->second != serial_;
}

inline KVR_GROUP Group::Handle() const {
  if (IsStale()) throw Error::Stale("group");
  return handle_;
}

inline std::string Group::Name() const {
  const auto [name, code] = detail::ReadName<KVR_WCHAR>(KVR_GetAsgNameW, Handle());
  if (code != KVR_ERR_NO_NAME && code != KVR_ERR_OFFLINE_GROUP) {
    detail::Require("reading a group's name", code);
  }
  return Utf8Of(name);
}

inline bool Group::IsOffline() const {
  return KVR_IsAsgOffline(Handle()) != 0;
}

inline std::optional<System> Group::Client() const {
  KVR_SYSTEM client = KVR_GetAsgClient(Handle());
  return client == nullptr ? std::nullopt : std::optional(System(client));
}

inline std::vector<System> Group::Servers() const {
  return Lists::Systems("listing a group's servers", KVR_GetAsgServerCount(Handle()),
                        [this](KVR_SYSTEM *systems, std::uint32_t *count) {
                          return KVR_GetAsgServers(handle_, systems, count);
                        });
}

inline std::vector<Group> Group::Children() const {
  return Lists::Groups(Handle());
}

inline std::vector<System> Group::AvailableServers() const {
  return Lists::Systems("listing the hosts that could serve a group",
                        KVR_GetAvailAsgServerCount(Handle()),
                        [this](KVR_SYSTEM *systems, std::uint32_t *count) {
                          return KVR_GetAvailAsgServers(handle_, systems, count);
                        });
}

inline SlotCount Group::Slots() const {
  return {KVR_GetFreeIndexCount(Handle()), KVR_GetUsedIndexCount(Handle())};
}

inline bool Group::HasClientBelow(const System &system) const {
  return KVR_IsClientInChildAsg(Handle(), system.Handle()) != 0;
}

inline bool Group::HasServerBelow(const System &system) const {
  return KVR_IsServerInChildAsg(Handle(), system.Handle()) != 0;
}

inline CreatedGroup Group::CreateGroup(std::string_view name, const System &client,
                                       std::uint32_t reserve) const {
  return Lists::Create(Handle(), name, client, reserve);
}

// Renaming by one form leaves the other as it was in the library until the next discovery, and the
// UTF-16 form is the one that is read; the 8-bit form gives the place among the other groups.
inline void Group::Rename(std::string_view name) const {
  constexpr char kDoing[] = "renaming a group";
  const WideString wide = detail::WideNameOf(kDoing, name);
  detail::Require(kDoing, KVR_RenameAsgW(Handle(), wide.c_str()));
  if (IsAscii(name)) {
    detail::Require(kDoing, KVR_RenameAsgA(Handle(), std::string(name).c_str()));
  }
}

inline void Group::Delete() const {
  const std::uint32_t code = KVR_DeleteAsg(Handle());
  detail::ForgetDeadGroups();
  Lists::RequireAll("deleting a group", code);
}

inline void Group::AddServer(const System &system) const {
  detail::Require("adding a server to a group", KVR_AddServerToAsg(Handle(), system.Handle()));
}

inline void Group::RemoveServer(const System &system) const {
  detail::Require("removing a server from a group",
                  KVR_RemoveServerFromAsg(Handle(), system.Handle()));
}

inline std::uint32_t Group::SetReserve(std::uint32_t slots) const {
  const std::uint32_t code = KVR_ModifyReservedIndexCount(Handle(), &slots);
  if (code != KVR_ERR_RESERVED_COUNT_REDUCED) {
    detail::Require("changing a group's reserve", code);
  }
  return slots;
}

inline void Group::SetClient(const System &system) const {
  detail::Require("handing a group to another client",
                  KVR_AssignNewClient(Handle(), system.Handle()));
}

}  // namespace kvrapi

#include "kvrapi/session_inline.hpp"

#endif
