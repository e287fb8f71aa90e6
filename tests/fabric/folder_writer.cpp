// Writes the table of host "a" in a fabric folder:
//
//   folder_writer FOLDER COUNT   counts the flags of the last position up, so many times
//   folder_writer FOLDER         uniform images, until it is killed
#include <cstdio>
#include <cstdlib>

#include "filled.h"

int main(int argc, char **argv) {
  fabric::FolderStore store(argv[1]);
  if (argc == 3) {
    for (int i = std::atoi(argv[2]); i > 0; --i)
      store.Update("a", [](SaTable &image) { ++image.entries[255].access.roleFlags; });
    return 0;
  }
  for (int value = 0;; value = (value + 1) % 256) {
    store.Write("a", Filled(value));
    store.Update("a", [&](SaTable &image) { image = Filled(value ^ 0x80); });
    if (value != 0) continue;
    std::fputs("writing", stderr);
    std::fflush(stderr);  // which has a buffer on some systems
  }
}
