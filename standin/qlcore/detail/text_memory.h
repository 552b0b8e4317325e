// Text in memory from odrxAlloc. Every function raises std::bad_alloc if there is no memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "hostsdk/odrx/alloc.h"
#include "hostsdk/win32/win32.h"

namespace ulm::qlcore {

inline constexpr int kMaxResource = 65535;  // a resource has a length of 16 bits
// The maximum of a formatted text: a format that always fails would never fit.
inline constexpr std::size_t kMaxFormat = 1u << 24;

struct TextDeleter {
  void operator()(void* memory) const noexcept { odrxFree(memory); }
};
template <class Character>
using TextMemory = std::unique_ptr<Character[], TextDeleter>;

// Returns an empty text with room for `length` characters and a terminator after them.
template <class Character>
TextMemory<Character> newText(std::size_t length) {
  if (length >= SIZE_MAX / sizeof(Character)) throw std::bad_alloc();
  auto* memory = static_cast<Character*>(odrxAlloc((length + 1) * sizeof(Character)));
  if (memory == nullptr) throw std::bad_alloc();
  memory[0] = Character{};
  memory[length] = Character{};
  return TextMemory<Character>(memory);
}

// Returns a copy of the first `length` characters of `text`.
template <class Character>
TextMemory<Character> copyText(const Character* text, std::size_t length) {
  TextMemory<Character> copy = newText<Character>(length);
  for (std::size_t i = 0; i < length; ++i) copy[i] = text[i];
  return copy;
}

// Convert between the two kinds by the ANSI code page; empty if the system cannot convert the text.
inline TextMemory<char> narrowText(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
  TextMemory<char> copy = newText<char>(size > 0 ? static_cast<std::size_t>(size) : 1);
  if (size > 0) WideCharToMultiByte(CP_ACP, 0, text, -1, copy.get(), size, nullptr, nullptr);
  return copy;
}

inline TextMemory<wchar_t> wideText(const char* text) {
  const int size = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
  TextMemory<wchar_t> copy = newText<wchar_t>(size > 0 ? static_cast<std::size_t>(size) : 1);
  if (size > 0) MultiByteToWideChar(CP_ACP, 0, text, -1, copy.get(), size);
  return copy;
}

}  // namespace ulm::qlcore
