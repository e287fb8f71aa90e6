// A survey seen as one configuration: who takes part, in which role, and what each slot is to whom.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "survey.h"

namespace kvrctl {

// A host whose table belongs to the configuration.
struct Member {
  const SurveyedHost *host;
  std::optional<std::uint32_t> slot;  // its own; of several that of its role, else the highest
  bool msc = false;
  bool backup = false;
  // What it has given out although nobody has it: slots of clients, and of its children's reserves.
  std::vector<std::uint32_t> lostClients;
  std::vector<std::uint32_t> lostReserve;

  [[nodiscard]] bool Serves(std::uint32_t slot) const;
  [[nodiscard]] bool Has(std::uint32_t roleFlag, std::uint32_t slot) const;
  [[nodiscard]] bool IsParentOf(const Member &child) const;
};

// Whether a host's table, which must have been read, is an MSC's.
bool IsMsc(const SurveyedHost &host);

// The members that have a mark at a slot. Backup MSCs are left out: their marks are the MSC's.
struct SlotMarks {
  std::vector<const Member *> holders;     // call it their own
  std::vector<const Member *> parents;     // have its client as their child
  std::vector<const Member *> reservers;   // have it in their reserve
  std::vector<const Member *> delegators;  // have given it into a child's reserve
  bool lost = false;  // given into the reserve of a child that does not have it
};

// Refers to the survey, which must outlive it.
class View {
 public:
  explicit View(const Survey &survey);
  View(const View &) = delete;
  View &operator=(const View &) = delete;

  const Survey &survey;
  // Whose table the others' are held against: that of an MSC of this host's configuration, or this
  // host's own; where it takes no part, of the largest one. Null where no table could be read.
  const SurveyedHost *reference = nullptr;
  std::vector<Member> members;  // the tables with the reference's identity or its keys
  std::vector<const SurveyedHost *> strangers;  // those with neither
  std::vector<const Member *> mscs;
  std::vector<const Member *> backups;
  std::array<SlotMarks, KVR_SLOT_COUNT> slots;
  std::vector<std::string> unread;  // hosts that may hold a table but could not be read

  // Whether a client has a member above it, so that its group stands where commands can change it.
  [[nodiscard]] bool HasParent(const Member &client) const;

  // The member that this host is, or null.
  [[nodiscard]] const Member *Local() const;

 private:
  void FillMembers();
  void FillMarks();
  void FindLost();
};

}  // namespace kvrctl
