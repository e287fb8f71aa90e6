#include "platform/memory.h"

#include <cstdlib>
#include <cstring>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace kvr {

void *Allocate(std::size_t size) {
  void *memory = std::malloc(size);
  if (memory == nullptr) std::abort();
  return memory;
}

void *AllocateZeroed(std::size_t size) {
  void *memory = std::calloc(1, size);
  if (memory == nullptr) std::abort();
  return memory;
}

void Release(void *memory) {
  std::free(memory);
}

void SecureZero(void *memory, std::size_t size) {
#if defined(_WIN32)
  SecureZeroMemory(memory, size);
#else
  explicit_bzero(memory, size);
#endif
}

}  // namespace kvr
