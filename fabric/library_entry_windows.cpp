// How Windows takes an outside library out of a process.
#include <windows.h>

#include "fabric/current.h"

// Of the C++ runtime inside the library: gives back the memory that it keeps for exceptions.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
namespace __gnu_cxx {
void __freeres();
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

// At the end of a process its other threads are gone already, wherever they were: nothing that they
// held can be had or waited for any more, and the system takes all of it back. A library that is
// unloaded before leaves nothing behind.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID processEnds) {
  if (reason != DLL_PROCESS_DETACH) return TRUE;
  if (processEnds != nullptr) fabric::AbandonCurrentNetwork();
  __gnu_cxx::__freeres();
  return TRUE;
}
