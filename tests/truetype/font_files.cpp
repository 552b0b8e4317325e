// Writes the fonts of the rows about `ulmira font` into a folder, which is emptied first.
//
// Usage: font_files FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "tests/truetype/rich_font.h"

namespace {

using namespace ulm::test;
namespace fs = std::filesystem;

FontImage scattered() {  // every other code of 20,000
  std::vector<Segment> segments;
  for (int code = 0x4E00; code < 0x4E00 + 20000; code += 2) {
    segments.push_back({code, code, 1 - code, 0});
  }
  segments.push_back({-1, -1, 1, 0});
  return richFont().table("cmap", cmapTable({{3, 1, cmapFormat4(segments)}}));
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
  // Two faces. A leads to glyph 1, B and P to 2, R to 3, a composite of 0 and 1; none to 4.
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
  // A family and a style outside ASCII, and a tag that would clear a terminal.
  write("wide.ttf", richFont()
                        .table("name", nameTable({{1, 0, 0, 2, "\x8Et\x8E\n"},
                                                  {3, 1, 1033, 1, std::string("\4\x16\0A", 4)}}))
                        .also("\x1B[2J", Bytes().u32(7))
                        .build());
  write("outlines.otf", Bytes().text("OTTO").zeros(8));
  write("outlines.otc", Bytes().text("ttcf").u32(0x10000).u32(1).u32(16).text("OTTO").zeros(8));
  write("packed.woff", Bytes().text("wOFF").zeros(40));
  write("packed.woff2", Bytes().text("wOF2").zeros(44));
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
