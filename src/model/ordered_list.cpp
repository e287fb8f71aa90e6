#include "model/ordered_list.h"

#include "platform/memory.h"

namespace kvr {
namespace {

std::int32_t Compare(const OrderedList &list, const void *a, const void *b) {
  return reinterpret_cast<CompareItems>(list.header.data)(a, b);
}

}  // namespace

OrderedList *ListCreate(CompareItems compare) {
  auto *list = static_cast<OrderedList *>(AllocateZeroed(sizeof(OrderedList)));
  list->header.data = reinterpret_cast<void *>(compare);
  return list;
}

ListNode *ListInsertAfter(ListNode *where, void *data) {
  auto *node = static_cast<ListNode *>(Allocate(sizeof(ListNode)));
  node->data = data;
  node->prev = where;
  node->next = where->next;
  if (node->next != nullptr) node->next->prev = node;
  where->next = node;
  return node;
}

void ListInsertSorted(OrderedList *list, void *data) {
  if (list == nullptr) return;
  ListNode *where = &list->header;
  for (ListNode *current = where->next; current != nullptr; current = current->next) {
    const std::int32_t order = Compare(*list, data, current->data);
    if (order < 0) break;
    where = current;
    if (order == 0) break;
  }
  ListInsertAfter(where, data);
}

ListNode *ListFirst(const OrderedList *list) {
  return list != nullptr ? list->header.next : nullptr;
}

ListNode *ListNext(const ListNode *node) {
  return node != nullptr ? node->next : nullptr;
}

ListNode *ListFind(const OrderedList *list, const void *value) {
  for (ListNode *node = ListFirst(list); node != nullptr; node = node->next) {
    const std::int32_t order = Compare(*list, node->data, value);
    if (order == 0) return node;
    if (order > 0) return nullptr;
  }
  return nullptr;
}

void ListUnlink(ListNode *node, std::uint32_t freeData) {
  if (node == nullptr) return;
  if (node->prev != nullptr) node->prev->next = node->next;
  if (node->next != nullptr) node->next->prev = node->prev;
  if (freeData == 1) Release(node->data);
  Release(node);
}

void ListDestroy(OrderedList *list, std::uint32_t freeData) {
  if (list == nullptr) return;
  for (ListNode *node = list->header.next; node != nullptr;) {
    ListNode *next = node->next;
    if (freeData == 1) Release(node->data);
    Release(node);
    node = next;
  }
  Release(list);
}

}  // namespace kvr
