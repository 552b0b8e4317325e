#include "truetype/list.h"

#include <cstdlib>

#include "truetype/detail/c_buffer.h"

namespace ulm::truetype {
namespace {

// A node linked between two neighbours, either of which may be missing; null without memory.
TTListNode* link(TTList* list, TTListNode* previous, TTListNode* next, void* item) noexcept {
  auto* node = static_cast<TTListNode*>(std::malloc(sizeof(TTListNode)));
  if (node == nullptr) return nullptr;
  *node = {next, previous, item};
  (previous == nullptr ? list->first : previous->next) = node;
  (next == nullptr ? list->last : next->previous) = node;
  if (list->current == nullptr) list->current = node;
  ++list->count;
  return node;
}

// Takes the last nodes away again, destructor or not.
void cutTo(TTList* list, std::uint32_t count) noexcept {
  while (list->last != nullptr && list->count > count) {
    TTListNode* node = list->last;
    list->last = node->previous;
    (list->last == nullptr ? list->first : list->last->next) = nullptr;
    if (list->current == node) list->current = list->last;
    std::free(node);
    --list->count;
  }
}

// All of `other` or nothing. The count is taken first: `other` may be the list itself.
bool appendItems(TTList* list, const TTList* other) noexcept {
  const std::uint32_t before = list->count;
  const TTListNode* node = other->first;
  for (std::uint32_t left = other->count; left > 0; --left, node = node->next) {
    if (link(list, list->last, nullptr, node->item) == nullptr) {
      cutTo(list, before);
      return false;
    }
  }
  return true;
}

void moveTo(TTList* list, std::uint32_t position) noexcept {
  list->current = list->first;
  while (position-- > 0) list->current = list->current->next;
}

int moveCursor(TTList* list, TTListNode* node) noexcept {
  if (node == nullptr || node == list->current) return 0;
  list->current = node;
  return 1;
}

}  // namespace

TTList* listCreate() noexcept { return static_cast<TTList*>(std::calloc(1, sizeof(TTList))); }

void listDispose(TTList* list) noexcept {
  if (list == nullptr) return;
  listClear(list);
  std::free(list);
}

void listClear(TTList* list) noexcept {
  TTListNode* node = list->first;
  list->first = list->last = list->current = nullptr;
  list->count = 0;
  while (node != nullptr) {
    TTListNode* next = node->next;
    if (list->destructor != nullptr) list->destructor(node->item);
    std::free(node);
    node = next;
  }
}

void listSetDestructor(TTList* list, TTListOperation operation) noexcept {
  list->destructor = operation;
}

TTList* listCopy(const TTList* list) noexcept {
  TTList* copy = listCreate();
  if (copy == nullptr) return nullptr;
  if (!appendItems(copy, list)) {
    listDispose(copy);
    return nullptr;
  }
  if (list->current != nullptr) moveTo(copy, listPosition(list));
  return copy;
}

void listAssign(TTList* target, const TTList* source) noexcept {
  if (target == source) return;
  TTList* copy = listCopy(source);
  if (copy == nullptr) return;
  listClear(target);
  target->first = copy->first;
  target->last = copy->last;
  target->current = copy->current;
  target->count = copy->count;
  std::free(copy);
}

TTList* listConcat(const TTList* a, const TTList* b) noexcept {
  TTList* both = listCreate();
  if (both == nullptr || (appendItems(both, a) && appendItems(both, b))) return both;
  listDispose(both);
  return nullptr;
}

void listAppend(TTList* list, void* item) noexcept { link(list, list->last, nullptr, item); }

void listAppendAll(TTList* list, const TTList* other) noexcept { appendItems(list, other); }

void listInsertAfter(TTList* list, void* item) noexcept {
  if (list->current == nullptr) return listAppend(list, item);
  link(list, list->current, list->current->next, item);
}

void listInsertBefore(TTList* list, void* item) noexcept {
  if (list->current == nullptr) return listAppend(list, item);
  link(list, list->current->previous, list->current, item);
}

void listRemoveCurrent(TTList* list) noexcept {
  TTListNode* node = list->current;
  if (node == nullptr) return;
  (node->previous == nullptr ? list->first : node->previous->next) = node->next;
  (node->next == nullptr ? list->last : node->next->previous) = node->previous;
  list->current = node->next != nullptr ? node->next : node->previous;
  --list->count;
  if (list->destructor != nullptr) list->destructor(node->item);
  std::free(node);
}

void* listCurrent(const TTList* list) noexcept {
  return list->current == nullptr ? nullptr : list->current->item;
}

std::uint32_t listCount(const TTList* list) noexcept { return list->count; }
int listIsEmpty(const TTList* list) noexcept { return list->count == 0; }

int listAtFirst(const TTList* list) noexcept {
  return list->current != nullptr && list->current == list->first;
}
int listAtLast(const TTList* list) noexcept {
  return list->current != nullptr && list->current == list->last;
}

std::uint32_t listPosition(const TTList* list) noexcept {
  std::uint32_t position = 0;
  if (list->current == nullptr) return 0;
  for (const TTListNode* node = list->first; node != list->current; node = node->next) ++position;
  return position;
}

int listFirst(TTList* list) noexcept { return moveCursor(list, list->first); }
int listLast(TTList* list) noexcept { return moveCursor(list, list->last); }

int listNext(TTList* list) noexcept {
  return list->current == nullptr ? 0 : moveCursor(list, list->current->next);
}
int listPrevious(TTList* list) noexcept {
  return list->current == nullptr ? 0 : moveCursor(list, list->current->previous);
}

int listSeek(TTList* list, const void* item) noexcept {
  for (TTListNode* node = list->first; node != nullptr; node = node->next) {
    if (node->item == item) {
      list->current = node;
      return 1;
    }
  }
  return 0;
}

void listForEach(const TTList* list, TTListOperation operation) {
  for (const TTListNode* node = list->first; node != nullptr;) {
    const TTListNode* next = node->next;
    operation(node->item);
    node = next;
  }
}

void** listToArray(const TTList* list) noexcept {
  auto items = detail::makeBuffer<void*>(list->count);
  if (items == nullptr) return nullptr;
  std::size_t place = 0;
  for (const TTListNode* node = list->first; node != nullptr; node = node->next) {
    items[place++] = node->item;
  }
  return items.release();
}

}  // namespace ulm::truetype
