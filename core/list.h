// A list of narrow strings that can cross a library boundary. The list owns copies of its strings,
// and each enumerator keeps its list alive.
//
// Nodes and strings are allocated with odrxAlloc and freed with odrxFree. Counts are not atomic:
// one thread at a time uses a list and its enumerators. If memory runs out, a function raises
// std::bad_alloc, or returns null if the process has a new-handler (module/glue/allocation.h); the
// list is unchanged then.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/cql_unknown_impl.h"
#include "hostsdk/adapter/alloc.h"
#include "hostsdk/adapter/interfaces.h"
#include "hostsdk/adapter/qlcore.h"
#include "module/glue/allocation.h"

// The links of a node. The chain is circular: the tail's next is the head, and the head's previous
// is the tail. A loop over the nodes ends at the tail.
struct COListNode {
  COListNode* next;
  COListNode* previous;
};

// A node: the links, then the value.
template <class T>
struct _CTListPlex : COListNode {
  using Value = T;
  T value;
};

// The chain of nodes. It links nodes and owns none of them.
class COList {
 public:
  COList() noexcept = default;
  COList(const COList&) = delete;
  COList& operator=(const COList&) = delete;

  // Links `node`, which is not null, after the tail and returns it.
  COListNode* AddTail(COListNode* node) noexcept {
    if (tail_ == nullptr) {
      head_ = tail_ = node->next = node->previous = node;
    } else {
      node->previous = tail_;
      node->next = head_;
      tail_->next = head_->previous = node;
      tail_ = node;
    }
    ++count_;
    return node;
  }

  std::uint32_t GetCount() const noexcept { return count_; }
  COListNode* GetHead() const noexcept { return head_; }  // null if the list is empty
  COListNode* GetTail() const noexcept { return tail_; }  // null if the list is empty

 protected:
  ~COList() = default;
  // Makes the list empty without freeing the nodes.
  void forgetNodes() noexcept {
    head_ = tail_ = nullptr;
    count_ = 0;
  }

 private:
  std::uint32_t count_ = 0;
  COListNode* head_ = nullptr;
  COListNode* tail_ = nullptr;
};

// Adds two properties: the heap that the list reports, and whether the list is closing, which means
// that it accepts no new node. The nodes do not come from the heap: it is only reported.
template <class Plex>
class CTList : public COList {
 public:
  // A null `heap` selects the default heap of the core library.
  explicit CTList(IHeap* heap = nullptr) noexcept
      : heap_(heap != nullptr ? heap : Mem_DefaultHeap(0)) {}

  IHeap* GetHeap() const noexcept { return heap_; }
  bool IsClosing() const noexcept { return closing_ != 0; }

 protected:
  ~CTList() = default;
  void startClosing() noexcept { closing_ = 1; }

 private:
  IHeap* heap_;
  std::uint32_t closing_ = 0;
};

template <class T>
class CTPList;

// The list of strings: it owns its nodes and a copy of each string, and frees them when it closes.
// A closed list is empty and stays closed.
template <>
class CTPList<const char*> : public CTList<_CTListPlex<const char*>> {
 public:
  using Node = _CTListPlex<const char*>;

  explicit CTPList(IHeap* heap = nullptr) noexcept : CTList(heap) {}
  virtual ~CTPList() { Close(); }
  static void* operator new(std::size_t) = delete;
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

  // Adds a copy of the string after the tail; a null string is stored as null. Returns the new
  // node, which the list owns. Returns null if the list is closing, and if memory runs out and the
  // process has a new-handler; raises std::bad_alloc if memory runs out and there is none.
  Node* AddTail(const char* const& value) {
    using ulm::glue::OdrxMemory;
    if (IsClosing()) return nullptr;
    OdrxMemory<char> copy;
    if (value != nullptr) {
      const std::size_t size = std::strlen(value) + 1;
      copy.reset(static_cast<char*>(ulm::glue::allocate(size)));
      if (copy == nullptr) return nullptr;
      std::memcpy(copy.get(), value, size);
    }
    void* memory = ulm::glue::allocate(sizeof(Node));
    if (memory == nullptr) return nullptr;
    Node* node = ::new (memory) Node{{nullptr, nullptr}, copy.release()};
    COList::AddTail(node);
    return node;
  }

 protected:
  // Frees all strings and nodes and closes the list. Further calls do nothing.
  void Close() noexcept {
    if (IsClosing()) return;
    startClosing();
    COListNode* const tail = GetTail();
    for (COListNode* at = GetHead(); at != nullptr;) {
      auto* node = static_cast<Node*>(at);
      at = at == tail ? nullptr : at->next;
      odrxFree(const_cast<char*>(node->value));
      odrxFree(node);
    }
    forgetNodes();
  }
};

// An enumerator over a list, from the head to the tail. It starts at the head.
template <class T>
class CTEnum : public IQLUnknown {
 public:
  // Fetches up to `count` values.
  //   values      receives them; null fetches none. The list keeps ownership of the strings
  //   outFetched  receives the number of values; may be null
  // Returns 1 if at least one value was fetched, otherwise 0.
  virtual std::int32_t Next(std::uint32_t count, T* values, std::uint32_t* outFetched) = 0;
  // Skips up to `count` values. Returns 1 if a value remains after them, otherwise 0.
  virtual std::int32_t Skip(std::uint32_t count) = 0;
  // Returns to the head of the list.
  virtual void Reset() = 0;

 protected:
  ~CTEnum() = default;
};

template <class T, class Argument>
class _CListEnum;

// A list that is also a counted object. It starts with one reference, which is the creator's.
template <class T, class Argument>
class CTListEnum : public CTPList<T>, public CQLUnknownImpl<IQLUnknown> {
 public:
  explicit CTListEnum(IHeap* heap = nullptr) noexcept : CTPList<T>(heap) {}
  static void* operator new(std::size_t) = delete;
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

  // Returns a new enumerator with one reference for the caller. Returns null if the list is
  // closing, and if memory runs out and the process has a new-handler; otherwise raises
  // std::bad_alloc.
  _CListEnum<T, Argument>* GetEnum() {
    if (this->IsClosing()) return nullptr;
    return _CListEnum<T, Argument>::over(this);
  }
};

// The enumerator of a CTListEnum. Each reference to the enumerator also holds one reference to the
// list, so the list outlives all its enumerators.
template <class T, class Argument>
class _CListEnum final : public CQLUnknownImpl<CTEnum<T>> {
 public:
  using List = CTListEnum<T, Argument>;
  using Node = typename List::Node;

  // Creates an enumerator over `list`, which is not null; the result is that of GetEnum.
  static _CListEnum* over(List* list) {
    auto* enumerator = ulm::glue::makeObject<_CListEnum>();
    if (enumerator == nullptr) return nullptr;
    list->AddRef();
    enumerator->list_ = list;
    return enumerator;
  }

  std::int32_t Next(std::uint32_t count, T* values, std::uint32_t* outFetched) override {
    if (started_ == 0) Reset();
    std::uint32_t fetched = 0;
    while (fetched < count && values != nullptr && current_ != nullptr) {
      values[fetched++] = static_cast<const Node*>(current_)->value;
      step();
    }
    if (outFetched != nullptr) *outFetched = fetched;
    return fetched != 0 ? 1 : 0;
  }

  std::int32_t Skip(std::uint32_t count) override {
    if (started_ == 0) Reset();
    for (; count > 0 && current_ != nullptr; --count) step();
    return current_ != nullptr ? 1 : 0;
  }

  void Reset() override {
    current_ = list_->GetHead();
    started_ = 1;
  }

  std::uint32_t AddRefBody() override {
    list_->AddRef();
    return ++ownReferences_;
  }

  std::uint32_t ReleaseBody() override {
    list_->Release();
    const std::uint32_t left = --ownReferences_;
    if (left == 0) delete this;
    return left;
  }

 private:
  // Moves to the next node, or to null after the tail.
  void step() noexcept { current_ = current_ == list_->GetTail() ? nullptr : current_->next; }

  const COListNode* current_ = nullptr;
  List* list_ = nullptr;
  std::uint32_t started_ = 0;
  std::uint32_t ownReferences_ = 1;
};
