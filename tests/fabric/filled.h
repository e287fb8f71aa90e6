// Images of which every byte is the same, so that a mixture of two shows.
#pragma once

#include <cstring>

#include "fabric/image_store.h"

inline SaTable Filled(int value) {
  SaTable image;
  std::memset(&image, value, sizeof image);
  return image;
}
