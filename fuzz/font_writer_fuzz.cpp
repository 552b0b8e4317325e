// The writer's tables: objects are made, filled, asked for their images and removed in any order,
// then assembled. A file that comes out has right sums and, if it has what a font needs, opens with
// the mappings that went in. An input is calls: a byte that selects one, and its arguments.
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "fuzz/font_properties.h"
#include "fuzz/input.h"
#include "tests/truetype/rich_font.h"
#include "truetype/writer/writer.h"

namespace {

using namespace ulm::fuzz;
using namespace ulm::truetype;

struct Dispose {
  void operator()(TrueTypeWriter* writer) const { disposeTrueTypeWriter(writer); }
};

const TrueTypeFont* sourceFont() {
  static const ulm::test::OpenFont font(ulm::test::richFont());
  return font.get();
}

// A copy in a block of its exact size.
std::uint8_t* copyOf(Bytes bytes, std::size_t size) {
  auto* const copy = static_cast<std::uint8_t*>(std::calloc(1, std::max<std::size_t>(size, 1)));
  if (!bytes.empty()) std::memcpy(copy, bytes.data(), std::min(bytes.size(), size));
  return copy;
}

class Session {
 public:
  Session() {
    TrueTypeWriter* made = nullptr;
    createTrueTypeWriter(&made);
    writer_.reset(made);
  }

  void call(Input& input) {
    switch (input.u8() % 12) {
      case 0: {
        const std::uint32_t tag = input.u8() % 2 == 0 ? kTags[input.u8() % 10] : input.u32();
        const Bytes bytes = input.takePart();
        add(createRawTable(tag, static_cast<std::uint32_t>(bytes.size()), bytes.data()));
        break;
      }
      case 1: {
        const std::unique_ptr<std::uint8_t, void (*)(void*)> created(copyOf(input.take(8), 8),
                                                                     std::free);
        add(createHeadTable(input.u32(), input.u16(), input.u16(), created.get(), input.u16(),
                            input.u16(), input.u16()));
        break;
      }
      case 2:
        add(createHheaTable(input.u16(), input.u16(), input.u16(), input.u16(), input.u16()));
        break;
      case 3: {
        const Bytes bytes = input.take(input.u8() % 2 == 0 ? 32 : input.u8());
        add(createMaxpTable(bytes.data(), static_cast<std::uint32_t>(bytes.size())));
        break;
      }
      case 4:
        add(createPostTable(input.u32(), input.u16(), input.u16(), input.u32()));
        break;
      case 5: {
        WriterTable* const names = table(kTagName, [] { return createNameTable(0, nullptr); });
        NameRecord record{input.u16(), input.u16(), input.u16(), input.u16(), 0, nullptr};
        const Bytes text = input.take(input.u8());
        record.length = static_cast<std::uint16_t>(text.size());
        record.data = const_cast<std::uint8_t*>(text.empty() ? nullptr : text.data());
        addNameRecord(names, &record);
        break;
      }
      case 6:
      case 7: {
        WriterTable* const glyf = table(kTagGlyf, createGlyfTable);
        const std::uint32_t before = glyphCount(glyf);
        const std::int32_t added =
            addGlyph(glyf, getGlyphData(sourceFont(), input.u8() % 6), sourceFont());
        require(
            added < 0 ? glyphCount(glyf) == before : static_cast<std::uint32_t>(added) == before,
            "a glyph is added after the others");
        break;
      }
      case 8: {
        WriterTable* const glyf = table(kTagGlyf, createGlyfTable);
        auto* const glyph = static_cast<GlyphData*>(std::calloc(1, sizeof(GlyphData)));
        glyph->glyphIndex = input.u8();
        const Bytes bytes = input.takePart();
        glyph->byteCount = static_cast<std::uint16_t>(bytes.size() + bytes.size() % 2);
        glyph->data = bytes.empty() ? nullptr : copyOf(bytes, glyph->byteCount);
        glyph->advanceWidth = input.u16();
        glyph->isComposite = !bytes.empty() && bytes[0] >= 0x80 ? 1 : 0;
        glyph->pointCount = input.u16();
        glyph->contourCount = input.u16();
        addGlyph(glyf, glyph, sourceFont());
        break;
      }
      case 9: {
        WriterTable* const cmap = table(kTagCmap, createCmapTable);
        for (std::uint32_t count = input.u8() % 64; count > 0; --count) {
          nextCode_ += 1u + input.u8() % 4u;
          const std::uint32_t glyph = input.u8() % 32;
          addCharMapping(cmap, nextCode_, glyph);
          if (nextCode_ < 0xFFFF) mapped_[nextCode_] = glyph;
        }
        break;
      }
      case 10:
        if (WriterTable* const found = findWriterTable(writer_.get(), kTags[input.u8() % 10])) {
          const std::uint8_t* bytes = nullptr;
          std::uint32_t length = 0, tag = 0;
          const WriterResult result = getTableImage(found, &bytes, &length, &tag);
          require(result == WriterResultOk || (bytes == nullptr && length == 0), "no image");
          if (result == WriterResultOk && length != 0) {
            volatile std::uint8_t last = bytes[(length + 3) / 4 * 4 - 1];  // the padding is there
            static_cast<void>(last);
          }
        }
        break;
      default: {
        const std::uint32_t tag = kTags[input.u8() % 10];
        removeWriterTable(writer_.get(), tag);
        if (tag == kTagCmap) mapped_.clear(), nextCode_ = 0;
      }
    }
  }

  void assemble() {
    std::uint8_t* made = nullptr;
    std::uint32_t length = 0;
    const WriterResult result = assembleFont(writer_.get(), &made, &length);
    const std::unique_ptr<std::uint8_t, void (*)(void*)> image(made, std::free);
    require((result == WriterResultOk) == (made != nullptr),
            "a file exactly where the result is Ok");
    require(result != WriterResultNoMemory, "there is memory");
    if (made == nullptr) return;
    int heads = 0;
    for (std::size_t i = 0; i < readUInt16(made, 4); ++i) {
      heads += readUInt32(made, 12 + 16 * i) == kTagHead ? 1 : 0;
    }
    // With a second head the sum of the file is in one of them.
    require(heads > 1 || ulm::test::checkFile(made, length) == 0,
            "sums, order, offsets and padding of a file");
    TrueTypeFont* font = nullptr;
    const FontResult opened =
        openTrueTypeFont("x", made, static_cast<std::int32_t>(length), 0, &font);
    if (opened != FontResultOk) return;
    require(ulm::test::checkReading(font, 32) == 0, "the results of reading the file");
    if (!hasRawTables_ && font->cmapLookup != nullptr) {
      for (const auto& [code, glyph] : mapped_) {
        require(font->cmapLookup(font->cmapSubtable, static_cast<std::uint16_t>(code)) == glyph,
                "each code leads to its glyph");
      }
    }
    closeTrueTypeFont(font);
  }

 private:
  static constexpr std::uint32_t kTags[] = {kTagRaw,  kTagHead, kTagHhea, kTagLoca, kTagMaxp,
                                            kTagGlyf, kTagCmap, kTagName, kTagPost, 0x68746D78};

  void add(WriterTable* made) {
    if (made->tag == kTagRaw) hasRawTables_ = true;
    require(addWriterTable(writer_.get(), made) == 0, "there is memory");
  }
  template <class Make>
  WriterTable* table(std::uint32_t tag, Make make) {
    if (findWriterTable(writer_.get(), tag) == nullptr) add(make());
    return findWriterTable(writer_.get(), tag);
  }

  std::unique_ptr<TrueTypeWriter, Dispose> writer_;
  std::uint32_t nextCode_ = 0;
  std::map<std::uint32_t, std::uint32_t> mapped_;
  bool hasRawTables_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;
  Input input(data, size);
  Session session;
  while (!input.isEmpty()) session.call(input);
  session.assemble();
  return 0;
}
