// The ordered list: every collection of the model is one.
//
// A doubly linked list of untyped items in the order of a comparison function given at creation.
// The header has a node's shape: its `data` holds the comparison function, its `next` the first
// node, so that unlinking the first node needs no case of its own. A list keeps no count; counts
// live in the owning records.
#pragma once

#include <cstdint>

namespace kvr {

// Negative when a stands before b, 0 when they are the same item, positive when a stands after b.
using CompareItems = std::int32_t (*)(const void *a, const void *b);

struct ListNode {
  void *data;
  ListNode *next;  // null at the end
  ListNode *prev;  // for the first node, the list's header
};

struct OrderedList {
  ListNode header;  // data: the comparison function; next: the first node; prev: null
};

// A new empty list, owned by the caller until ListDestroy.
OrderedList *ListCreate(CompareItems compare);

// Puts data ahead of the first item that compares greater than it, after an item that compares
// equal. A null list is left alone. One scan from the first node.
void ListInsertSorted(OrderedList *list, void *data);

// Puts data right after a node or a list's header, whatever the order says; returns the new node.
// For callers that have worked the order out.
ListNode *ListInsertAfter(ListNode *where, void *data);

// The first node, or null; a null list has none.
ListNode *ListFirst(const OrderedList *list);

// The following node, or null; null follows null.
ListNode *ListNext(const ListNode *node);

// The node whose item compares equal to value, or null. Ends at the first item that compares
// greater: an item that is out of order can be missed.
ListNode *ListFind(const OrderedList *list, const void *value);

// Takes a node out of its list and frees it; its item too when freeData is 1. Null is ignored.
void ListUnlink(ListNode *node, std::uint32_t freeData);

// Frees a list with its nodes; their items too when freeData is 1. Null is ignored.
void ListDestroy(OrderedList *list, std::uint32_t freeData);

// The items of a list as T, for range-for. The list, which may be null, must not change meanwhile.
template <class T>
class ListView {
 public:
  explicit ListView(const OrderedList *list) : first_(ListFirst(list)) {}

  class Iterator {
   public:
    explicit Iterator(const ListNode *node) : node_(node) {}
    T &operator*() const { return *static_cast<T *>(node_->data); }
    Iterator &operator++() {
      node_ = node_->next;
      return *this;
    }
    bool operator!=(const Iterator &other) const { return node_ != other.node_; }

   private:
    const ListNode *node_;
  };

  Iterator begin() const { return Iterator(first_); }
  Iterator end() const { return Iterator(nullptr); }

 private:
  const ListNode *first_;
};

}  // namespace kvr
