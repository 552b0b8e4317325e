// Opens a font, calls every reading operation, makes a subset, and opens and reads that too. The
// last byte of an input selects the face, of which collections here have few, and the flags of the
// subset. The rest is the image, in a heap block of its exact size.
#include <cstring>
#include <memory>

#include "fuzz/font_properties.h"
#include "fuzz/input.h"
#include "truetype/bytes.h"
#include "truetype/reader/open.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 65536) return 0;
  const std::size_t imageSize = size - 1;
  const std::unique_ptr<std::uint8_t[]> image(new std::uint8_t[imageSize]);
  std::memcpy(image.get(), data, imageSize);
  ulm::truetype::TrueTypeFont* font = nullptr;
  const auto result = ulm::truetype::openTrueTypeFont(
      "dir/name.ttf", image.get(), static_cast<std::int32_t>(imageSize), data[size - 1] % 4, &font);
  int wrong = (font != nullptr) == (result == ulm::truetype::FontResultOk) ? 0 : 1;
  // Few glyphs, so that a run stays short even if each glyph takes the maximum of work.
  if (font != nullptr) {
    wrong += ulm::test::checkReading(font, 16);
    wrong += ulm::test::checkSubset(font, {0, 3, 1, 4, 4, 2, 15, 0xFFFF}, data[size - 1]);
  }
  ulm::truetype::closeTrueTypeFont(font);
  ulm::fuzz::require(wrong == 0, "each result can be");
  return 0;
}

#ifdef ULM_FUZZ_WITH_LIBFUZZER
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// Changes the bytes of one table, which the directory locates, and leaves the others where they
// are. Every fourth mutation is one of any bytes.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
  constexpr std::size_t kDirectory = 12, kEntry = 16;
  if (seed % 4 == 0 || size < kDirectory + kEntry) return LLVMFuzzerMutate(data, size, maxSize);
  const std::size_t count = data[5];
  const std::size_t entry = kDirectory + kEntry * (seed / 4 % std::max<std::size_t>(count, 1));
  if (entry + kEntry > size) return LLVMFuzzerMutate(data, size, maxSize);
  const std::size_t offset = ulm::truetype::readUInt32(data, entry + 8);
  const std::size_t length = ulm::truetype::readUInt32(data, entry + 12);
  if (offset >= size || length == 0 || length > size - offset) {
    return LLVMFuzzerMutate(data, size, maxSize);
  }
  // The beginning of a table holds its counts and offsets.
  const std::size_t part = seed % 4 == 1 ? std::min<std::size_t>(length, 40) : length;
  LLVMFuzzerMutate(data + offset, part, part);
  return size;
}
#endif
