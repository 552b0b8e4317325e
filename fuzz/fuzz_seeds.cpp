// Writes seeds of the fuzz targets, inputs built in code, into a folder for each target.
//   fuzz_seeds FOLDER
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>

#include "tests/truetype/rich_font.h"

namespace {

using namespace ulm::test;

std::filesystem::path root;
bool failed = false;

void write(const std::string& target, const std::string& name,
           const std::vector<std::uint8_t>& bytes) {
  std::filesystem::create_directories(root / target);
  std::ofstream file(root / target / name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  failed = failed || !file.flush();
}

// A font, and the byte of its face.
void writeFont(const char* name, Bytes image) { write("font", name, image.u8(0)); }

void writeFonts() {
  const Bytes format2 = Bytes().u16({2, 0, 0}).zeros(512).u16({0x40, 3, 7, 2, 5, 6, 7});
  const auto cmap = [](const Bytes& subtable) {
    return richFont().table("cmap", cmapTable({{3, 1, subtable}})).last("cmap").build();
  };
  writeFont("least", FontImage().build());
  writeFont("rich", richFont().build());
  writeFont("collection", richFont().collection(2));
  writeFont("cmap0", cmap(Bytes().u16({0, 262, 0}).zeros(256)));
  writeFont("cmap2", cmap(format2));
  writeFont("cmap6", cmap(Bytes().u16({6, 0, 0, 0x41, 2, 1, 2})));
  writeFont("kern_apple",
            richFont().table("kern", Bytes().u32(0x00010000).u32(1).u32(24).zeros(20)).build());
  writeFont("kern_last", richFont().last("kern").build());
  writeFont("glyf_last", richFont().last("glyf").build());
}

struct LowFirst : std::vector<std::uint8_t> {
  LowFirst& number(std::uint64_t value, int bytes) {
    for (; bytes > 0; --bytes, value >>= 8) push_back(static_cast<std::uint8_t>(value));
    return *this;
  }
};

// An executable file with one loaded segment, a table of strings and a version block; before it the
// byte of the string's number.
void writeExecutable() {
  const std::string names("\0.rsrc_strings\0.rsrc_version\0.names\0", 36);
  LowFirst strings, version;
  strings.number(0, 2).number(7, 2).number(2, 2).number('o', 2).number('k', 2);
  version.number(92, 2).number(52, 2).number(0, 2);
  for (const char letter : std::string("VS_VERSION_INFO")) version.number(std::uint8_t(letter), 2);
  version.number(0, 2).number(0, 2).number(0xFEEF04BD, 4).number(0x10000, 4);
  while (version.size() < 92) version.push_back(1);

  constexpr std::uint64_t kHeader = 64, kSegment = 56, kSections = 4;
  const std::uint64_t data = kHeader + kSegment + kSections * 64;
  LowFirst file;
  file.number(7, 1);  // the string's number
  file.number(0x464C457F, 4).number(0x010102, 3).number(0, 9);
  file.number(3, 2).number(62, 2).number(1, 4).number(0, 8);
  file.number(kHeader, 8).number(kHeader + kSegment, 8).number(0, 4);
  file.number(64, 2).number(56, 2).number(1, 2).number(64, 2).number(kSections, 2).number(3, 2);
  file.number(1, 4).number(5, 4).number(0, 8).number(0, 16).number(data, 8).number(data, 8);
  file.number(0x1000, 8);
  std::uint64_t offset = data;
  const auto section = [&](std::uint32_t name, std::uint32_t type, std::uint64_t size) {
    file.number(name, 4).number(type, 4).number(0, 16).number(offset, 8).number(size, 8);
    file.number(0, 24);
    offset += size;
  };
  section(0, 0, 0);
  section(1, 1, strings.size());
  section(15, 1, version.size());
  section(29, 3, names.size());
  file.insert(file.end(), strings.begin(), strings.end());
  file.insert(file.end(), version.begin(), version.end());
  file.insert(file.end(), names.begin(), names.end());
  write("executable", "library", file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: fuzz_seeds FOLDER\n";
    return 2;
  }
  root = argv[1];
  writeFonts();
  writeExecutable();
  // Inputs that are calls, or bytes of any kind: each byte is one.
  std::mt19937 random(17);
  for (const char* target : {"digest", "font_writer", "clip_segment", "core_calls"}) {
    for (const std::size_t size : {4u, 65u, 200u, 1500u}) {
      std::vector<std::uint8_t> bytes(size);
      for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
      write(target, "random_" + std::to_string(size), bytes);
    }
  }
  if (failed) std::cerr << "a seed cannot be written\n";
  return failed ? 1 : 0;
}
