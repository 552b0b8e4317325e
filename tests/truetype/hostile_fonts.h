// Small fonts that ask for much work or memory, for the tests and for the benchmark of work limits.
#pragma once

#include <vector>

#include "tests/truetype/font_image.h"

namespace ulm::test {

// Glyph 16 draws 65,536 times on the first one.
inline std::vector<Bytes> towerOn(const Bytes& glyph) {
  std::vector<Bytes> glyphs{glyph};
  for (int i = 0; i < 16; ++i) glyphs.push_back(compositeGlyph({moved(i, 1, 1), moved(i, 0, 0)}));
  return glyphs;
}

// 65,534 glyphs, of which every other one has the bytes from `start` to `end`.
inline FontImage sharing(const Bytes& glyf, std::size_t start, std::size_t end) {
  Bytes loca;
  for (int i = 0; i < 32767; ++i) {
    loca.u32(static_cast<std::uint32_t>(start)).u32(static_cast<std::uint32_t>(end));
  }
  FontImage image;
  image.table("glyf", glyf).loca(loca.u32(0), 1);
  return image.patch16("maxp", 4, 65534);
}

// Ends of contours that do not rise.
inline Bytes fallingEnds() { return simpleGlyph({0, 0}, {{0, 0}}); }

// A cycle in each of 256 composites has its points counted.
inline FontImage cycles() {
  std::vector<Bytes> glyphs = towerOn(fallingEnds());
  for (int i = 17; i < 17 + 256; ++i) {
    glyphs.push_back(compositeGlyph({moved(i, 0, 0), moved(16, 0, 0)}));
  }
  return FontImage().glyphs(glyphs);
}

inline FontImage oneComposite() {
  const Bytes wide = compositeGlyph(std::vector<Part>(8000, moved(9, 0, 0)));
  return sharing(wide, 0, wide.size());
}

inline FontImage chainsThatRunOn() {
  return sharing(compositeGlyph(std::vector<Part>(50000, Part{0, 1, Bytes().u16({0})})), 0, 2);
}

inline FontImage outlinesThatRunOn() {
  Bytes ends = Bytes().u16({32767, 0, 0, 0, 0});
  for (int i = 0; i < 32767; ++i) ends.u16({i % 2 == 0 ? -1 : 0});
  return sharing(ends.u16({0}).zeros(65536 * 7), 0, 2);
}

// The tower, then 100 composites that each turn the one before by a matrix. Glyph 116 is beyond the
// maximum of work.
inline FontImage deepTower() {
  const Part turned{0x0083, 16, Bytes().u16({3, 4, 0x2111, 0x1000, -0x1000, 0x2333})};
  std::vector<Bytes> deep = towerOn(fallingEnds());
  for (int i = 17; i < 17 + 100; ++i) {
    deep.push_back(compositeGlyph({{turned.flags, i - 1, turned.rest}}));
  }
  return FontImage().glyphs(deep);
}

}  // namespace ulm::test
