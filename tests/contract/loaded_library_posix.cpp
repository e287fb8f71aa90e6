#include <dlfcn.h>
#include <filesystem>
#include <iterator>
#include <malloc.h>
#include <stdexcept>

#include "loaded_library.h"

LoadedLibrary::LoadedLibrary(const std::string &path)
    : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw std::runtime_error(dlerror());
}

LoadedLibrary::~LoadedLibrary() { dlclose(handle_); }

std::uintptr_t LoadedLibrary::Call(const std::string &name, std::uintptr_t a, std::uintptr_t b,
                                   std::uintptr_t c, std::uintptr_t d, std::uintptr_t e) const {
  const auto function = reinterpret_cast<Function>(dlsym(handle_, name.c_str()));
  if (function == nullptr) throw std::runtime_error(name);
  return function(a, b, c, d, e);
}

bool LoadedLibrary::IsInProcess(const std::string &path) {
  void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

Holdings HoldingsNow() {
  mallopt(M_ARENA_MAX, 1);  // that all threads have their memory from what is counted
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return {mallinfo2().uordblks, static_cast<std::size_t>(std::distance(begin(files), end(files)))};
}
