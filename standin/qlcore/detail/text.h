// Text in memory of the runtime's allocator: std::bad_alloc where there is none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "hostsdk/odrx/alloc.h"
#include "hostsdk/win32/win32.h"

namespace ulm::qlcore {

inline constexpr int kLongestResource = 65535;  // a resource counts its characters in 16 bits
inline constexpr std::size_t kLongestFormat = 1u
                                              << 24;  // where a format that never fits is given up

struct TextDeleter {
  void operator()(void* memory) const noexcept { odrxFree(memory); }
};
template <class Character>
using TextMemory = std::unique_ptr<Character[], TextDeleter>;

// Room for `length` characters, with a terminator at its start and its end.
template <class Character>
TextMemory<Character> newText(std::size_t length) {
  if (length >= SIZE_MAX / sizeof(Character)) throw std::bad_alloc();
  auto* memory = static_cast<Character*>(odrxAlloc((length + 1) * sizeof(Character)));
  if (memory == nullptr) throw std::bad_alloc();
  memory[0] = Character{};
  memory[length] = Character{};
  return TextMemory<Character>(memory);
}

template <class Character>
TextMemory<Character> copyText(const Character* text, std::size_t length) {
  TextMemory<Character> made = newText<Character>(length);
  for (std::size_t i = 0; i < length; ++i) made[i] = text[i];
  return made;
}

// Between the kinds, by the ANSI code page.
inline TextMemory<char> narrowText(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
  TextMemory<char> made = newText<char>(size > 0 ? static_cast<std::size_t>(size) : 1);
  if (size > 0) WideCharToMultiByte(CP_ACP, 0, text, -1, made.get(), size, nullptr, nullptr);
  return made;
}

inline TextMemory<wchar_t> wideText(const char* text) {
  const int size = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
  TextMemory<wchar_t> made = newText<wchar_t>(size > 0 ? static_cast<std::size_t>(size) : 1);
  if (size > 0) MultiByteToWideChar(CP_ACP, 0, text, -1, made.get(), size);
  return made;
}

}  // namespace ulm::qlcore
