// TTList: a doubly linked list of untyped items with a cursor, and an optional destructor that is
// applied to each item as it leaves.
#pragma once

#include <cstdint>

namespace ulm::truetype {

struct TTListNode {
  TTListNode* next;
  TTListNode* previous;
  void* item;  // a pointer, or a plain number of its size
};

using TTListOperation = void (*)(void* item);

struct TTList {
  TTListNode* first;
  TTListNode* last;
  TTListNode* current;  // the cursor; null exactly when the list is empty
  std::uint32_t count;
  TTListOperation destructor;  // may be null
};

// No list may be null, except for listDispose. Without memory an operation that makes a list or an
// array returns null, and one that adds items leaves its list as it was; nothing leaks. All run in
// constant time except those that pass over the items: clear, dispose, copy, assign, concat,
// appendAll, position, seek, forEach, toArray.

TTList* listCreate() noexcept;            // released with listDispose
void listDispose(TTList* list) noexcept;  // clears and frees; null is allowed
void listClear(TTList* list) noexcept;    // from the first item on
void listSetDestructor(TTList* list, TTListOperation operation) noexcept;

// A list of the same items without a destructor, its cursor at the matching node.
TTList* listCopy(const TTList* list) noexcept;
// `target` drops its items and takes those of `source`, with the cursor at the matching node. It
// keeps its destructor. A list assigned to itself stays as it is.
void listAssign(TTList* target, const TTList* source) noexcept;
// A list of the items of `a`, then of `b`, without a destructor; the cursor at the first.
TTList* listConcat(const TTList* a, const TTList* b) noexcept;

// The cursor moves only where the list was empty: to the new node.
void listAppend(TTList* list, void* item) noexcept;
void listAppendAll(TTList* list, const TTList* other) noexcept;  // may be the same list
void listInsertAfter(TTList* list, void* item) noexcept;
void listInsertBefore(TTList* list, void* item) noexcept;
// The cursor moves to the next node, or without one to the previous. Nothing on an empty list.
void listRemoveCurrent(TTList* list) noexcept;

void* listCurrent(const TTList* list) noexcept;  // null without a cursor
std::uint32_t listCount(const TTList* list) noexcept;
int listIsEmpty(const TTList* list) noexcept;
int listAtFirst(const TTList* list) noexcept;  // 0 on an empty list, as listAtLast
int listAtLast(const TTList* list) noexcept;
std::uint32_t listPosition(const TTList* list) noexcept;  // nodes before the cursor

// 1 where the cursor moved, else 0.
int listFirst(TTList* list) noexcept;
int listLast(TTList* list) noexcept;
int listNext(TTList* list) noexcept;
int listPrevious(TTList* list) noexcept;
// 1 with the cursor at the first node that holds `item`, or 0 with the cursor as it was.
int listSeek(TTList* list, const void* item) noexcept;

void listForEach(const TTList* list, TTListOperation operation);
// The items in order, released with free; not null for an empty list.
void** listToArray(const TTList* list) noexcept;

}  // namespace ulm::truetype
