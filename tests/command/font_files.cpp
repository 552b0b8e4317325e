// Writes the fonts for the rows of `ulmira font` into a folder, which is emptied first.
//
// Usage: font_files FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "tests/truetype/rich_font.h"

namespace {

using namespace ulm::test;
namespace fs = std::filesystem;

// Maps every second character of a range of 20,000.
FontImage scattered() {
  std::vector<Segment> segments;
  for (int code = 0x4E00; code < 0x4E00 + 20000; code += 2) {
    segments.push_back({code, code, 1 - code, 0});
  }
  segments.push_back({-1, -1, 1, 0});
  return richFont().table("cmap", cmapTable({{3, 1, cmapFormat4(segments)}}));
}

struct Lookup {
  int type;
  Bytes subtable;
  int times = 1;  // how often the lookup lists its subtable
};

// GSUB or GPOS with one feature, which uses the first lookup.
Bytes layoutTable(const std::string& feature, const std::vector<Lookup>& lookups) {
  Bytes table, list;
  table.u16({1, 0, 0, 10, 24});                    // no scripts, features, lookups
  table.u16({1}).text(feature).u16({8, 0, 1, 0});  // the feature's one lookup has index 0
  const int count = static_cast<int>(lookups.size());
  table.u16({count});
  for (const Lookup& lookup : lookups) {
    table.u16({2 + 2 * count + static_cast<int>(list.size())});
    list.u16({lookup.type, 0, lookup.times});
    for (int i = 0; i < lookup.times; ++i) list.u16({6 + 2 * lookup.times});
    list.add(lookup.subtable);
  }
  return table.add(list);
}

struct LayoutFont {
  const char *name, *feature;
  std::vector<Lookup> lookups;
  const char* tag = "GSUB";
};

// Each table acts on A and B, the glyphs 1 and 2, and not on A and R, the glyphs 1 and 3, unless a
// comment gives another result. A subtable is a list of its 16-bit words.
std::vector<LayoutFont> layoutFonts() {
  const auto words = [](std::initializer_list<int> values) { return Bytes().u16(values); };
  const Bytes single = words({1, 6, 1, 1, 1, 2});
  const Bytes ligature = words({1, 8, 1, 14, 1, 1, 1, 1, 4, 3, 2, 2});
  const Lookup both{1, words({1, 6, 1, 2, 1, 1, 2, 0})};  // for lookups that call it
  Bytes unending = words({1, 8, 1, 16, 2, 1, 1, 1, 1000});
  for (int i = 0; i < 1000; ++i) unending.u16({2002});
  unending.u16({3, 2, 4});  // 1,000 times the ligature of A with a glyph that is not in the subset
  return {
      {"single", "ccmp", {{1, single}}},
      {"ligature", "liga", {{4, ligature}}},
      {"extension", "liga", {{7, words({1, 4, 0, 8}).add(ligature)}}},
      {"on demand", "dlig", {{4, ligature}}},  // acts on nothing by default
      {"context 1", "calt", {{5, words({1, 8, 1, 14, 1, 1, 1, 1, 4, 2, 1, 2, 0, 1})}, both}},
      {"context 2",
       "calt",
       {{5, words({2, 12, 18, 2, 0, 28, 1, 1, 1, 1, 1, 2, 1, 2, 1, 4, 2, 1, 2, 0, 1})}, both}},
      {"context 3", "calt", {{5, words({3, 2, 1, 14, 20, 0, 1, 1, 1, 1, 1, 1, 2})}, both}},
      {"context without a lookup",
       "calt",  // acts on nothing
       {{5, words({3, 1, 1, 12, 0, 7, 1, 1, 1})}, both}},
      {"chain 1", "calt", {{6, words({1, 8, 1, 14, 1, 1, 1, 1, 4, 0, 1, 1, 2, 1, 0, 1})}, both}},
      {"chain 2",
       "calt",
       {{6, words({2, 16, 0, 22, 22, 2, 0, 38, 1, 1, 1, 2, 2, 1,
                   1, 1,  2, 2,  2,  1, 4, 0,  1, 1, 2, 1, 0, 1})},
        both}},
      {"chain 3", "calt", {{6, words({3, 0, 1, 18, 1, 24, 1, 0, 1, 1, 1, 1, 1, 1, 2})}, both}},
      {"reverse chain", "rlig", {{8, words({1, 14, 0, 1, 20, 1, 3, 1, 1, 1, 1, 1, 2})}}},
      {"too costly", "liga", {{4, unending, 32000}}},  // counts as acting on both
      {"cut", "liga", {{4, words({1, 8, 1})}}},        // acts on nothing
      {"adjustment", "dist", {{1, single}}, "GPOS"},
      {"pair 1", "kern", {{2, words({1, 12, 4, 0, 1, 18, 1, 1, 1, 2, 2, -50, 3, 0})}}, "GPOS"},
      {"pair 2",
       "kern",
       {{2, words({2, 28, 4, 0, 34, 42, 2, 3, 0, 0, 0, 0, 0, -50,
                   1, 1,  1, 1, 1,  1,  1, 1, 1, 3, 1, 2, 0})}},
       "GPOS"},
      {"mark", "mark", {{4, words({1, 12, 18, 1, 0, 0, 1, 1, 2, 1, 1, 1})}}, "GPOS"},
      {"chained pair",
       "kern",
       {{8, words({3, 0, 1, 18, 1, 24, 1, 0, 1, 1, 1, 1, 1, 1, 2})}, both},
       "GPOS"},
  };
}

void writeAll(const fs::path& folder) {
  const auto write = [&](const std::string& name, const Bytes& bytes) {
    std::ofstream stream(folder / name, std::ios::binary);
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    stream.close();
  };
  fs::create_directories(folder / "folder");
  write("out.ttf", Bytes().text("old"));
  write("bad", Bytes().text("A\xFF"));
  write("text", Bytes().text("\xEF\xBB\xBFR\r\nA\nA\r"));
  // Two faces. A maps to glyph 1, B and P to 2, R to 3, a composite of 0 and 1; nothing maps to 4.
  write("font.ttc", richFont().collection(2));
  write("font.ttf", richFont().build());
  write("scattered.ttf", scattered().build());
  write("most.ttf", richFont().glyphs(std::vector<Bytes>(6404)).build());
  write("many.ttf", richFont().glyphs(std::vector<Bytes>(6405)).build());
  write("hollow.ttf", richFont().loca(Bytes().u32(8).u32(0).zeros(16), 1).build());
  write("no_os2.ttf", richFont().without("OS/2").build());
  write("short_os2.ttf", richFont().table("OS/2", Bytes().zeros(76)).build());
  write("maxp_1.1.ttf", richFont().patch16("maxp", 2, 1).build());
  write("maxp_0.5.ttf", richFont().table("maxp", Bytes().u32(0x5000).u16({5})).build());
  // A family and a style that are not ASCII, and tags that would clear a terminal.
  write("wide.ttf", richFont()
                        .table("name", nameTable({{1, 0, 0, 2, "\x8Et\x8E\n"},
                                                  {3, 1, 1033, 1, std::string("\4\x16\0A", 4)}}))
                        .also("\x1B[2J", Bytes().u32(7))
                        .also("\x9B\x32J\x7F", Bytes().u32(7))
                        .build());
  write("outlines.otf", Bytes().text("OTTO").zeros(8));
  write("outlines.otc", Bytes().text("ttcf").u32(0x10000).u32(1).u32(16).text("OTTO").zeros(8));
  write("packed.woff", Bytes().text("wOFF").zeros(40));
  write("packed.woff2", Bytes().text("wOF2").zeros(44));
  fs::create_directories(folder / "layout");
  for (const LayoutFont& font : layoutFonts()) {
    write(
        "layout/" + std::string(font.name) + ".ttf",
        richFont().without("kern").also(font.tag, layoutTable(font.feature, font.lookups)).build());
  }
  write("layout/kern.ttf", richFont().build());
  write("layout/variations.ttf", richFont().without("kern").also("fvar", Bytes().u32(7)).build());
  for (const int typeFlags :
       {0x0000, 0x0001, 0x0002, 0x0003, 0x0004, 0x0006, 0x000A, 0x0108, 0x0208}) {
    char name[16];
    std::snprintf(name, sizeof name, "%04x.ttf", static_cast<unsigned>(typeFlags));
    write(name, richFont().patch16("OS/2", 8, typeFlags).build());
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 2) return 2;
    fs::remove_all(argv[1]);
    fs::create_directories(argv[1]);
    writeAll(argv[1]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "font_files: %s\n", error.what());
    return 1;
  }
}
