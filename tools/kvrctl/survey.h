// What the hosts' tables hold, read afresh at each question through a host's adapters in their
// order, and all of it as one record.
//
// It reads; it never writes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kvrapi/table_formats.h"

#include "adapters.h"
#include "library.h"

namespace kvrctl {

// The host's header, access table or whole table; null where it holds none or no adapter answers.
std::unique_ptr<SaTableHeader> ReadHeader(const System &host);
std::unique_ptr<AccessControlTable> ReadAccess(const System &host);
std::unique_ptr<SaTable> ReadTable(const System &host);

// This host's stored table, or null.
std::unique_ptr<SaTable> ReadLocalTable();

// What is known of a host whose table can't be read, beyond that.
enum class Reach {
  Unknown,  // it holds no table, or it can't be reached
  Down,     // it is described as down
  NoWay,    // it is described as up, but all its adapters as down
  Torn,     // it is described as up and holds a table, which is not of a table's size
  Refused,  // it is described as up and holds a table, which its adapters don't give
  Up        // it is described as up: it holds no table
};

struct SurveyedHost {
  std::string name;      // as in System; this host's may be "this host"
  std::string wideName;  // as in System
  bool local = false;
  Reach reach = Reach::Unknown;          // told only where there is no table
  std::shared_ptr<const SaTable> table;  // null: none could be read
  // The ordinals of the adapters that don't answer while another of the host does.
  std::vector<std::size_t> silentAdapters;
};

// A group that stands for a client that was not found.
struct MissingClient {
  std::string parent;                // the host that is the client above it; empty: the top level
  std::vector<std::string> clients;  // the clients of the groups below it
};

struct Survey {
  std::vector<SurveyedHost> hosts;    // this one first; excluded ones left out
  std::vector<std::string> excluded;  // their names; they may take part, and are not asked
  std::vector<MissingClient> missing;
};

// The record of this network as this host sees it.
Survey TakeSurvey(const Library &library);

}  // namespace kvrctl
