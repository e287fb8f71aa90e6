#include "platform/library_entry.h"

#if defined(_WIN32)
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_DETACH) kvr::OnProcessDetach();
  return TRUE;
}

#else

namespace {

[[gnu::destructor]] void Detach() {
  kvr::OnProcessDetach();
}

}  // namespace

#endif
