#include "platform/library_entry.h"

#if defined(_WIN32)
#include <windows.h>

// Of the C++ runtime inside the library: gives back the memory that it keeps for exceptions.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
namespace __gnu_cxx {
void __freeres();
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_DETACH) {
    kvr::OnProcessDetach();
    __gnu_cxx::__freeres();
  }
  return TRUE;
}

#else

namespace {

[[gnu::destructor]] void Detach() {
  kvr::OnProcessDetach();
}

}  // namespace

#endif
