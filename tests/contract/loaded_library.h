// The library as a program meets it that loads it when it needs it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// A loaded library, which the destructor lets go.
class LoadedLibrary {
 public:
  // Any function of the interface: none takes more than five arguments, and each fits a word.
  using Function = std::uintptr_t (*)(std::uintptr_t, std::uintptr_t, std::uintptr_t,
                                      std::uintptr_t, std::uintptr_t);

  // Throws std::runtime_error where it can't be loaded.
  explicit LoadedLibrary(const std::string &path);
  LoadedLibrary(const LoadedLibrary &) = delete;
  ~LoadedLibrary();

  // Calls a function by its name. Throws std::runtime_error where the library has none of it.
  std::uintptr_t Call(const std::string &name, std::uintptr_t a = 0, std::uintptr_t b = 0,
                      std::uintptr_t c = 0, std::uintptr_t d = 0, std::uintptr_t e = 0) const;

  // Whether the library of that path is in this process.
  static bool IsInProcess(const std::string &path);

 private:
  void *handle_;
};

// What the process holds: bytes of the C library's heap, and open files, or handles and slots of
// a thread's storage.
struct Holdings {
  std::size_t bytes, handles;
};
Holdings HoldingsNow();
