// Memory for the records of many glyphs that go together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace ulm::truetype::detail {

// Hands out pieces of larger blocks, all given back with the arena.
class GlyphArena {
 public:
  GlyphArena() noexcept = default;
  GlyphArena(const GlyphArena&) = delete;
  GlyphArena& operator=(const GlyphArena&) = delete;
  ~GlyphArena() {
    while (blocks_ != nullptr) {
      Block* next = blocks_->next;
      std::free(blocks_);
      blocks_ = next;
    }
  }

  // Aligned for pointers; null without memory.
  void* take(std::size_t bytes) noexcept {
    const std::size_t room = roomOf(bytes);
    if (blocks_ == nullptr || room > blocks_->left) {
      // A large piece has a block of its own, behind the present one, whose rest is not wasted.
      const bool isLarge = room > kMostBlock / 8;
      Block* block = makeBlock(isLarge || room > nextBlock_ ? room : nextBlock_);
      if (block == nullptr) return nullptr;
      if (isLarge && blocks_ != nullptr) {
        block->left = 0;
        block->next = std::exchange(blocks_->next, block);
        return block + 1;
      }
      block->next = std::exchange(blocks_, block);
      if (!isLarge && nextBlock_ < kMostBlock) nextBlock_ *= 2;
    }
    blocks_->left -= room;
    return reinterpret_cast<std::uint8_t*>(blocks_ + 1) + blocks_->left;
  }
  // The piece last taken, of so many bytes; a large one stays until the end.
  void giveBack(std::size_t bytes) noexcept {
    const std::size_t room = roomOf(bytes);
    if (room <= kMostBlock / 8) blocks_->left += room;
  }

 private:
  struct Block {
    Block* next;
    std::size_t left;  // bytes not yet handed out, at the block's front
  };
  static constexpr std::size_t kFirstBlock = std::size_t{1} << 11;
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

// What a table of glyphs owns. The records lie by themselves: every step of assembly passes over
// all of them, and over few of the bytes.
struct GlyphStore {
  GlyphArena records, bytes;
};

}  // namespace ulm::truetype::detail
