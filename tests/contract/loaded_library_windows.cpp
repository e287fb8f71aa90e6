#include <malloc.h>
#include <stdexcept>
#include <windows.h>

#include "loaded_library.h"

LoadedLibrary::LoadedLibrary(const std::string &path) : handle_(LoadLibraryA(path.c_str())) {
  if (handle_ == nullptr) throw std::runtime_error(path);
}

LoadedLibrary::~LoadedLibrary() { FreeLibrary(static_cast<HMODULE>(handle_)); }

std::uintptr_t LoadedLibrary::Call(const std::string &name, std::uintptr_t a, std::uintptr_t b,
                                   std::uintptr_t c, std::uintptr_t d, std::uintptr_t e) const {
  const FARPROC found = GetProcAddress(static_cast<HMODULE>(handle_), name.c_str());
  if (found == nullptr) throw std::runtime_error(name);
  return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(found))(a, b, c, d, e);
}

bool LoadedLibrary::IsInProcess(const std::string &path) {
  return GetModuleHandleA(path.c_str()) != nullptr;
}

Holdings HoldingsNow() {
  Holdings now{};
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  const DWORD freeSlot = TlsAlloc();  // of a thread's storage, from the first one on
  TlsFree(freeSlot);
  now.handles = handles + freeSlot;
  _HEAPINFO entry{};
  while (_heapwalk(&entry) == _HEAPOK) now.bytes += entry._useflag == _USEDENTRY ? entry._size : 0;
  return now;
}
