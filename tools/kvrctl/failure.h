// What a command could not do, as one record: thrown where nothing of it was done, carried beside
// the result where a part was.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "kvrapi/kvrapi.hpp"

#include "exit_status.h"

namespace kvrctl {

// The exit status that a result code other than 0 leads to.
ExitStatus StatusOf(std::uint32_t code);

// A host that a change could not be made on, and the library's code for it.
struct HostFailure {
  std::string host;
  std::uint32_t code;
};

class Failure : public std::exception {
 public:
  // A failure that the library has no code for; name is a word for scripts, as "AMBIGUOUS_HOST".
  Failure(ExitStatus exitStatus, std::string errorName, std::string sentence, std::string wayOut)
      : status(exitStatus),
        name(std::move(errorName)),
        message(std::move(sentence)),
        hint(std::move(wayOut)) {}

  // The library answered resultCode; doing says what was asked, as "Adding to the ACG", forWhom for
  // which hosts it failed, or nothing. The exit status follows from the code.
  Failure(const std::string &doing, std::uint32_t resultCode, const std::string &forWhom = "");

  const char *what() const noexcept override { return message.c_str(); }

  ExitStatus status;
  std::uint32_t code = 0;  // the library's result code; 0: the failure is not the library's
  std::string name;
  std::string message;  // a whole sentence: what was asked, the cause, the code
  std::string hint;     // a whole sentence: the way out
  std::string retry;    // sentences behind it that name the command to go on with, or nothing
  std::vector<HostFailure> failedHosts;
};

// What the call returns; the library's refusal is thrown as a Failure, doing being as there.
template <class Call>
auto Require(const std::string &doing, const Call &call) {
  try {
    return call();
  } catch (const kvrapi::Error &error) {
    throw Failure(doing, error.Code());
  }
}

// The library's result code of a call that returns nothing.
template <class Call>
std::uint32_t CodeOf(const Call &call) {
  try {
    call();
    return KVR_OK;
  } catch (const kvrapi::Error &error) {
    return error.Code();
  }
}

}  // namespace kvrctl
