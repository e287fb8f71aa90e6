#include "platform/text.h"

namespace kvr {

void Widen(KVR_WCHAR *units, const char *text, std::size_t length) {
  std::transform(text, text + length, units, [](char character) {
    return static_cast<KVR_WCHAR>(static_cast<unsigned char>(character));
  });
}

void Narrow(char *text, const KVR_WCHAR *units, std::size_t length) {
  for (std::size_t i = 0; i < length && units[i] <= 0xFF; ++i)
    text[i] = static_cast<char>(units[i]);
}

}  // namespace kvr
