#include "model/system_order.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "platform/text.h"

namespace kvr {
namespace {

// An arrival with its names as ranks, so that the order can be worked out without touching the
// large records again. Rank 0 stands for no UTF-16 name.
struct Item {
  std::uint32_t arrival;
  std::uint32_t asciiRank;
  std::uint32_t wideRank;
};

// Consecutive items of the list, with the highest ranks among them. A new item stops at the first
// item that is not below it, so a block whose highest ranks are below the new item is passed over.
struct Block {
  std::vector<Item> items;
  std::uint32_t maxAscii = 0;        // among all items
  std::uint32_t maxWide = 0;         // among those with a UTF-16 name
  std::uint32_t maxAsciiNarrow = 0;  // among those without
};

constexpr std::size_t MAX_BLOCK_ITEMS = 128;

// Whether the scan of the new item stops at one that is in the list already.
bool StopsAt(const Item &added, const Item &present) {
  if (added.wideRank != 0 && present.wideRank != 0) return added.wideRank <= present.wideRank;
  return added.asciiRank <= present.asciiRank;
}

bool StopsWithin(const Item &added, const Block &block) {
  if (added.wideRank == 0) return added.asciiRank <= block.maxAscii;
  return added.wideRank <= block.maxWide || added.asciiRank <= block.maxAsciiNarrow;
}

void Cover(Block &block, const Item &item) {
  block.maxAscii = std::max(block.maxAscii, item.asciiRank);
  if (item.wideRank != 0) {
    block.maxWide = std::max(block.maxWide, item.wideRank);
  } else {
    block.maxAsciiNarrow = std::max(block.maxAsciiNarrow, item.asciiRank);
  }
}

// Splits a block that has grown too long into two halves.
void Split(std::vector<Block> &blocks, std::size_t index) {
  const auto middle = static_cast<std::ptrdiff_t>(blocks[index].items.size() / 2);
  std::vector<Item> items = std::move(blocks[index].items);
  Block halves[2];
  halves[0].items.assign(items.begin(), items.begin() + middle);
  halves[1].items.assign(items.begin() + middle, items.end());
  for (Block &half : halves) {
    for (const Item &item : half.items)
      Cover(half, item);
  }
  blocks[index] = std::move(halves[0]);
  blocks.insert(blocks.begin() + static_cast<std::ptrdiff_t>(index) + 1, std::move(halves[1]));
}

void Insert(std::vector<Block> &blocks, const Item &added) {
  auto block = std::find_if(blocks.begin(), blocks.end(),
                            [&](const Block &b) { return StopsWithin(added, b); });
  if (block == blocks.end()) --block;
  const auto place = std::find_if(block->items.begin(), block->items.end(),
                                  [&](const Item &present) { return StopsAt(added, present); });
  block->items.insert(place, added);
  Cover(*block, added);
  if (block->items.size() > MAX_BLOCK_ITEMS) {
    Split(blocks, static_cast<std::size_t>(block - blocks.begin()));
  }
}

bool HasWideName(const SystemRecord *system) {
  return system->discovered.systemNameW[0] != 0;
}

// Gives each arrival the rank of its name, from 1, equal names sharing one.
template <class CompareNames>
void Rank(const std::vector<SystemRecord *> &arrivals, std::vector<std::uint32_t> &order,
          std::vector<Item> &items, std::uint32_t Item::*rank, CompareNames compare) {
  const auto before = [&](std::uint32_t a, std::uint32_t b) {
    return compare(arrivals[a]->discovered, arrivals[b]->discovered) < 0;
  };
  if (!std::is_sorted(order.begin(), order.end(), before)) {
    std::sort(order.begin(), order.end(), before);
  }
  std::uint32_t current = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i == 0 || before(order[i - 1], order[i])) ++current;
    items[order[i]].*rank = current;
  }
}

std::vector<Item> RankedItems(const std::vector<SystemRecord *> &arrivals) {
  std::vector<Item> items(arrivals.size());
  std::vector<std::uint32_t> order(arrivals.size());
  std::iota(order.begin(), order.end(), 0U);
  for (const std::uint32_t i : order)
    items[i].arrival = i;
  Rank(arrivals, order, items, &Item::asciiRank,
       [](const DiscoveredSystem &a, const DiscoveredSystem &b) {
         return CompareOrdinal(a.systemName, b.systemName, VEXO_SYSTEM_NAME_CAPACITY);
       });
  std::erase_if(order, [&](std::uint32_t i) { return !HasWideName(arrivals[i]); });
  Rank(arrivals, order, items, &Item::wideRank,
       [](const DiscoveredSystem &a, const DiscoveredSystem &b) {
         return CompareOrdinal(a.systemNameW, b.systemNameW, VEXO_SYSTEM_NAME_CAPACITY);
       });
  return items;
}

// Whether each arrival goes to the end of the list: the comparison is transitive where all or none
// have a UTF-16 name, so that it is enough to look at the neighbour.
bool ArriveInOrder(const std::vector<SystemRecord *> &arrivals) {
  const auto wide = std::ranges::count_if(arrivals, HasWideName);
  if (wide != 0 && static_cast<std::size_t>(wide) != arrivals.size()) return false;
  const auto misplaced = std::ranges::adjacent_find(
      arrivals,
      [](const SystemRecord *a, const SystemRecord *b) { return CompareSystems(b, a) <= 0; });
  return misplaced == arrivals.end();
}

}  // namespace

void ListFillSystems(OrderedList &list, const std::vector<SystemRecord *> &arrivals) {
  ListNode *last = &list.header;
  if (ArriveInOrder(arrivals)) {
    for (SystemRecord *arrival : arrivals)
      last = ListInsertAfter(last, arrival);
    return;
  }
  std::vector<Block> blocks(1);
  for (const Item &item : RankedItems(arrivals))
    Insert(blocks, item);
  for (const Block &block : blocks) {
    for (const Item &item : block.items)
      last = ListInsertAfter(last, arrivals[item.arrival]);
  }
}

}  // namespace kvr
