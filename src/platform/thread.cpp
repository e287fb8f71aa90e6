#include "platform/thread.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace kvr {

ThreadId CurrentThread() {
#if defined(_WIN32)
  return GetCurrentThreadId();
#else
  return static_cast<ThreadId>(pthread_self());
#endif
}

}  // namespace kvr
