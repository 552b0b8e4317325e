// A small font with something in every table that is read.
#pragma once

#include "tests/truetype/font_image.h"

namespace ulm::test {

inline FontImage richFont() {
  const Bytes triangle = simpleGlyph({2}, {{0, 0}, {100, 0}, {50, 80}});
  // Two contours end with the same point.
  Bytes repeated = Bytes().u16({3, 0, 0, 9, 9, 3, 1, 3, 1}).u8(0xB0);
  repeated.u8(0x3F).u8(3).u8(1).u8(2).u8(3).u8(4).u8(5).u8(6).u8(7).u8(8);
  const Part turned{0x0083, 1, Bytes().u16({3, 4, 0x2000, 0x1000, -0x1000, 0x2000})};
  FontImage image;
  image.glyphs({triangle,
                repeated,
                {},
                compositeGlyph({moved(0, 10, 20, 0x0200), turned}),
                compositeGlyph({moved(3, 1, 1), moved(0, 5, 5)})});
  image.table("name", nameTable({{0, 0, 0, 1, std::string("\0F", 2)},
                                 {1, 0, 0, 2, "Regular"},
                                 {3, 1, 1033, 6, std::string("\0P\0S", 4)}}));
  image.table("cmap",
              cmapTable({{3, 0, cmapFormat4({{-1, -1, 1, 0}})},
                         {3, 1,
                          cmapFormat4({{0x41, 0x42, 0xFFC0, 0}, {0x50, 0x52, 1, 4}, {-1, -1, 1, 0}},
                                      {1, 0, 2})}}));
  image.longMetrics("hhea", "hmtx", 2, Bytes().u16({500, 1, 600, 2, 3, 4, 5}));
  image.longMetrics("vhea", "vmtx", 1, Bytes().u16({900, 1, 2, 3, 4, 5}));
  image.table("OS/2", Bytes().zeros(78)).table("post", Bytes().zeros(32));
  Bytes kern = Bytes().u16({0, 2, 0, 26, 1, 2, 12, 1, 0, 0, 1, -50, 1, 2, 30});
  return image.also("kern", kern.u16({0, 20, 0, 1, 6, 0, 0, 2, 3, 7})).also("zzzz", Bytes().u32(7));
}

}  // namespace ulm::test
