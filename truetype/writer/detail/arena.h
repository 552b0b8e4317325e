// Memory for many small records that are released together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace ulm::truetype::detail {

// Hands out small pieces of larger blocks, all released with the arena.
class Arena {
 public:
  Arena() noexcept = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena() {
    while (blocks_ != nullptr) {
      Block* next = blocks_->next;
      std::free(blocks_);
      blocks_ = next;
    }
  }

  // Aligned for pointers, of kMostPiece bytes at the most; null without memory.
  void* take(std::size_t bytes) noexcept {
    const std::size_t room = roomOf(bytes);
    if (blocks_ == nullptr || room > blocks_->left) {
      Block* block = makeBlock(nextBlock_);
      if (block == nullptr) return nullptr;
      block->next = std::exchange(blocks_, block);
      if (nextBlock_ < kMostBlock) nextBlock_ *= 2;
    }
    blocks_->left -= room;
    return reinterpret_cast<std::uint8_t*>(blocks_ + 1) + blocks_->left;
  }
  // The piece last taken, of so many bytes.
  void giveBack(std::size_t bytes) noexcept { blocks_->left += roomOf(bytes); }

  static constexpr std::size_t kMostPiece = std::size_t{1} << 11;

 private:
  struct Block {
    Block* next;
    std::size_t left;  // bytes not yet handed out, at the block's front
  };
  static constexpr std::size_t kFirstBlock = kMostPiece;
  static constexpr std::size_t kMostBlock = std::size_t{1} << 16;

  static constexpr std::size_t roomOf(std::size_t bytes) noexcept {
    return (bytes + alignof(Block) - 1) & ~(alignof(Block) - 1);
  }
  static Block* makeBlock(std::size_t bytes) noexcept {
    auto* block = static_cast<Block*>(std::malloc(sizeof(Block) + bytes));
    if (block != nullptr) *block = {nullptr, bytes};
    return block;
  }

  std::size_t nextBlock_ = kFirstBlock;
  Block* blocks_ = nullptr;
};

}  // namespace ulm::truetype::detail
