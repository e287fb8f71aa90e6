// How Windows takes an outside library out of a process.
#include "fabric/current.h"

#include <windows.h>

// At the end of a process its other threads are gone already, wherever they were: nothing that they
// held can be had or waited for any more, and the system takes all of it back. A library that is
// unloaded before leaves nothing behind.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_DETACH && processEnds != nullptr) fabric::AbandonCurrentNetwork();
  return TRUE;
}
