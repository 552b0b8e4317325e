// Owns one reference to an interface object.
#pragma once

#include <utility>

// Takes over the reference that a query or a factory handed out, and gives it back in its
// destructor, so that it goes back on every path.
template <class Interface>
class IfaceHolder {
 public:
  explicit IfaceHolder(Interface* owned = nullptr) noexcept : pointer_(owned) {}
  IfaceHolder(IfaceHolder&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  // The reference held so far goes back at once.
  IfaceHolder& operator=(IfaceHolder&& other) noexcept {
    IfaceHolder taken(std::move(other));
    std::swap(pointer_, taken.pointer_);
    return *this;
  }
  ~IfaceHolder() {
    if (pointer_ == nullptr) return;
    pointer_->Release();
    pointer_ = nullptr;
  }

  Interface* get() const noexcept { return pointer_; }
  Interface* operator->() const noexcept { return pointer_; }
  explicit operator bool() const noexcept { return pointer_ != nullptr; }

 private:
  Interface* pointer_;
};
