// Writes the seeds of the font fuzzer, fonts built in code, into a folder.
//   font_seeds FOLDER
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/truetype/rich_font.h"

int main(int argc, char** argv) {
  using namespace ulm::test;
  if (argc != 2) {
    std::cerr << "usage: font_seeds FOLDER\n";
    return 2;
  }
  Bytes format2 = Bytes().u16({2, 0, 0}).zeros(512).u16({0x40, 3, 7, 2, 5, 6, 7});
  const auto cmap = [](const Bytes& subtable) {
    return richFont().table("cmap", cmapTable({{3, 1, subtable}})).last("cmap").build();
  };
  const Bytes apple = Bytes().u32(0x00010000).u32(1).u32(24).zeros(20);
  const std::pair<const char*, Bytes> seeds[] = {
      {"least", FontImage().build()},
      {"rich", richFont().build()},
      {"collection", richFont().collection(2)},
      {"cmap0", cmap(Bytes().u16({0, 262, 0}).zeros(256))},
      {"cmap2", cmap(format2)},
      {"cmap6", cmap(Bytes().u16({6, 0, 0, 0x41, 2, 1, 2}))},
      {"kern_apple", richFont().table("kern", apple).build()},
      {"kern_last", richFont().last("kern").build()},
      {"glyf_last", richFont().last("glyf").build()},
  };
  std::filesystem::create_directories(argv[1]);
  for (const auto& [name, image] : seeds) {
    std::ofstream file(std::filesystem::path(argv[1]) / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(image.data()),
               static_cast<std::streamsize>(image.size()));
    file.put('\0');  // the face
    if (!file.flush()) {
      std::cerr << name << ": cannot be written\n";
      return 1;
    }
  }
  return 0;
}
