// The post table: what PostScript printers ask for.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct Post {
  static constexpr std::uint32_t kTag = tag("post");
  static constexpr std::uint32_t kVersion3 = 0x00030000;  // without glyph names

  static constexpr std::size_t kSize = 32;  // of version 3.0
  static constexpr Field<Post, std::uint32_t, 0> kVersion{};
  static constexpr Field<Post, std::int32_t, 4> kItalicAngle{};  // 16.16 degrees
  static constexpr Field<Post, std::int16_t, 8> kUnderlinePosition{};
  static constexpr Field<Post, std::int16_t, 10> kUnderlineThickness{};
  static constexpr Field<Post, std::uint32_t, 12> kIsFixedPitch{};
};

}  // namespace ulm::truetype::format
