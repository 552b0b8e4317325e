// A list of narrow strings that can be handed across a library boundary: it owns copies of its
// strings, and the enumerators that it gives out keep it alive.
//
// Nodes and strings come from odrxAlloc and go back there. Counts are plain: a list and its
// enumerators belong to one thread at a time. Where memory runs out, std::bad_alloc, or null after
// a new-handler (module/glue/allocation.h), and the list is as it was.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/cql_unknown_impl.h"
#include "hostsdk/adapter/alloc.h"
#include "hostsdk/adapter/interfaces.h"
#include "hostsdk/adapter/qlcore.h"
#include "module/glue/allocation.h"

// The links of a node. The chain is a circle: the tail's next is the head, the head's previous the
// tail. A walk ends by comparing with the tail.
struct COListNode {
  COListNode* next;
  COListNode* previous;
};

// A node: its links, then its value.
template <class T>
struct _CTListPlex : COListNode {
  using Value = T;
  T value;
};

// The plain list: links nodes and owns nothing.
class COList {
 public:
  COList() noexcept = default;
  COList(const COList&) = delete;
  COList& operator=(const COList&) = delete;

  // Puts a ready node behind the tail; gives it.
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
  COListNode* GetHead() const noexcept { return head_; }  // null when empty
  COListNode* GetTail() const noexcept { return tail_; }

 protected:
  ~COList() = default;
  void forgetNodes() noexcept {
    head_ = tail_ = nullptr;
    count_ = 0;
  }

 private:
  std::uint32_t count_ = 0;
  COListNode* head_ = nullptr;
  COListNode* tail_ = nullptr;
};

// Adds the heap that the list was told of, and whether it is being taken down.
template <class Plex>
class CTList : public COList {
 public:
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

// Owns its strings.
template <>
class CTPList<const char*> : public CTList<_CTListPlex<const char*>> {
 public:
  using Node = _CTListPlex<const char*>;

  explicit CTPList(IHeap* heap = nullptr) noexcept : CTList(heap) {}
  virtual ~CTPList() { Close(); }
  static void* operator new(std::size_t) = delete;
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

  // Puts a copy of the string behind the tail; gives its node, or null when the list is closing. A
  // null pointer is kept as one.
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
  // Frees all strings and nodes, and refuses new ones for good. Only the first call does anything.
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

// An enumerator over a list, from its head to its tail. It needs no positioning before its first
// use.
template <class T>
class CTEnum : public IQLUnknown {
 public:
  // Writes up to `count` values to `values`, and how many to *outFetched unless that is null;
  // non-zero when it wrote any. The strings stay the list's. With null `values` none is fetched.
  virtual std::int32_t Next(std::uint32_t count, T* values, std::uint32_t* outFetched) = 0;
  // Steps over up to `count` values; non-zero when one is left behind them.
  virtual std::int32_t Skip(std::uint32_t count) = 0;
  // Goes back to the head.
  virtual void Reset() = 0;

 protected:
  ~CTEnum() = default;
};

template <class T, class Argument>
class _CListEnum;

// A list that is counted and queried like any object. It starts with one reference, its creator's.
template <class T, class Argument>
class CTListEnum : public CTPList<T>, public CQLUnknownImpl<IQLUnknown> {
 public:
  explicit CTListEnum(IHeap* heap = nullptr) noexcept : CTPList<T>(heap) {}
  static void* operator new(std::size_t) = delete;
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

  // A new enumerator with one reference for the caller; null when the list is closing.
  _CListEnum<T, Argument>* GetEnum() {
    if (this->IsClosing()) return nullptr;
    return _CListEnum<T, Argument>::over(this);
  }
};

// The enumerator. Each of its references is one of the list's too, so that a list lives as long as
// any reference to any of its enumerators.
template <class T, class Argument>
class _CListEnum final : public CQLUnknownImpl<CTEnum<T>> {
 public:
  using List = CTListEnum<T, Argument>;
  using Node = typename List::Node;

  static _CListEnum* over(List* list) {
    auto* made = ulm::glue::makeObject<_CListEnum>();
    if (made == nullptr) return nullptr;
    list->AddRef();
    made->list_ = list;
    return made;
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
  // Forward by one; behind the tail stands nothing.
  void step() noexcept { current_ = current_ == list_->GetTail() ? nullptr : current_->next; }

  const COListNode* current_ = nullptr;
  List* list_ = nullptr;
  std::uint32_t started_ = 0;
  std::uint32_t ownReferences_ = 1;
};
