// The one rule by which arrays of handles are handed to a caller.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

#include "model/ordered_list.h"

namespace kvr {

// Whether the caller's array and count can be used; otherwise the answer is 5007.
template <class Record>
bool CanCopyOut(Record *const *handles, const std::uint32_t *count) {
  return count != nullptr && (handles != nullptr || *count == 0);
}

// Walks a list, which may be null, and stores the first *count items that qualify; each is passed
// to stored as it is. *count becomes the number stored. Returns 0, moreCode when more items
// qualified, or 5007, with nothing written, for null pointers.
template <class Record, class Qualifies, class Stored>
std::uint32_t CopyOut(const OrderedList *list, Record **handles, std::uint32_t *count,
                      std::uint32_t moreCode, Qualifies qualifies, Stored stored) {
  if (!CanCopyOut(handles, count)) return KVR_ERR_INVALID_HANDLE;
  const std::uint32_t capacity = *count;
  std::uint32_t total = 0;
  for (Record &item : ListView<Record>(list)) {
    if (!qualifies(item)) continue;
    if (total < capacity) {
      handles[total] = &item;
      stored(item);
    }
    ++total;
  }
  *count = total < capacity ? total : capacity;
  return total > capacity ? moreCode : KVR_OK;
}

template <class Record, class Qualifies>
std::uint32_t CopyOut(const OrderedList *list, Record **handles, std::uint32_t *count,
                      std::uint32_t moreCode, Qualifies qualifies) {
  return CopyOut(list, handles, count, moreCode, qualifies, [](Record &) {});
}

// As above for the whole list.
template <class Record>
std::uint32_t CopyOutAll(const OrderedList *list, Record **handles, std::uint32_t *count,
                         std::uint32_t moreCode) {
  return CopyOut(list, handles, count, moreCode, [](const Record &) { return true; });
}

}  // namespace kvr
