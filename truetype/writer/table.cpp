#include "truetype/writer/table.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "truetype/detail/c_buffer.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/directory.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/maxp.h"
#include "truetype/format/post.h"
#include "truetype/writer/detail/cmap_table.h"
#include "truetype/writer/detail/glyf_table.h"
#include "truetype/writer/detail/name_table.h"
#include "truetype/writer/detail/table_object.h"

namespace ulm::truetype {
namespace {

using detail::CBuffer;
using detail::makeTable;
using detail::TableImage;
using format::FixedSink;
using format::Head, format::Hhea, format::Maxp, format::Post;

// Memory for the bytes of a table that is its own payload, all zero.
template <class Table>
CBuffer<std::uint8_t> makeBytes() noexcept {
  return detail::makeZeroedBuffer<std::uint8_t>(
      static_cast<std::size_t>(format::padded(Table::kSize)));
}

WriterResult giveRaw(WriterTable* table, TableImage* out) noexcept {
  const auto& raw = *static_cast<const RawTableData*>(table->data);
  *out = {raw.bytes, raw.length, raw.tag};
  return WriterResultOk;
}

template <class Table>
WriterResult giveBytes(WriterTable* table, TableImage* out) noexcept {
  *out = {static_cast<const std::uint8_t*>(table->data), Table::kSize, Table::kTag};
  return WriterResultOk;
}

WriterResult giveLoca(WriterTable* table, TableImage* out) noexcept {
  const auto& loca = *static_cast<const LocaTableData*>(table->data);
  if (loca.length == 0) return WriterResultEmptyTable;
  *out = {loca.bytes, loca.length, kTagLoca};
  return WriterResultOk;
}

WriterResult makePostImage(WriterTable* table, TableImage* out) noexcept {
  const auto& post = *static_cast<const PostTableData*>(table->data);
  out->tag = kTagPost;
  if (post.format != kPostFormat) {
    std::fprintf(stderr, "Unrecognized format of a post table: %08X.\n", post.format);
    return WriterResultBadTable;
  }
  detail::NewBytes image(Post::kSize);
  if (!image.hasMemory()) return WriterResultNoMemory;
  image.sink().clear(0, Post::kSize);
  const auto fields = image.sink().record<Post>(0);
  fields.put(Post::kVersion, post.format);
  fields.put(Post::kItalicAngle, static_cast<std::int32_t>(post.italicAngle));
  fields.put(Post::kUnderlinePosition, static_cast<std::int16_t>(post.underlinePosition));
  fields.put(Post::kUnderlineThickness, static_cast<std::int16_t>(post.underlineThickness));
  fields.put(Post::kIsFixedPitch, post.isFixedPitch);
  return image.becomeImage(table, kTagPost, out);
}

// The disposal handlers: each releases what a payload owns, and the payload.

void disposeBytes(WriterTable* table) noexcept { std::free(table->data); }

void disposeRaw(WriterTable* table) noexcept {
  std::free(static_cast<RawTableData*>(table->data)->bytes);
  std::free(table->data);
}

void disposeLoca(WriterTable* table) noexcept {
  std::free(static_cast<LocaTableData*>(table->data)->bytes);
  std::free(table->data);
}

void disposePost(WriterTable* table) noexcept {
  const std::uint32_t format = static_cast<PostTableData*>(table->data)->format;
  if (format != kPostFormat) {
    std::fprintf(stderr, "Unsupported format of a 'post' table: %08X.\n", format);
  }
  std::free(table->data);
}

using ImageHandler = WriterResult (*)(WriterTable* table, TableImage* out) noexcept;
using DisposalHandler = void (*)(WriterTable* table) noexcept;

// Tables of nine rows, indexed alike.
constexpr std::size_t kKinds = 9;
constexpr std::uint32_t kTags[kKinds] = {kTagRaw,  kTagHead, kTagHhea, kTagLoca, kTagMaxp,
                                         kTagGlyf, kTagCmap, kTagName, kTagPost};
constexpr ImageHandler kImageHandlers[kKinds] = {
    giveRaw,         giveBytes<Head>,       giveBytes<Hhea>,       giveLoca,
    giveBytes<Maxp>, detail::makeGlyfImage, detail::makeCmapImage, detail::makeNameImage,
    makePostImage};
constexpr DisposalHandler kDisposalHandlers[kKinds] = {
    disposeRaw,          disposeBytes,        disposeBytes,         disposeLoca, disposeBytes,
    detail::disposeGlyf, detail::disposeCmap, detail::disposeNames, disposePost};

std::size_t kindOf(std::uint32_t tag) noexcept {
  std::size_t kind = 0;
  while (kind < kKinds && kTags[kind] != tag) ++kind;
  return kind;
}

}  // namespace

WriterTable* createRawTable(std::uint32_t tag, std::uint32_t length,
                            const std::uint8_t* bytes) noexcept {
  CBuffer<std::uint8_t> copy;
  if (length != 0) {
    copy = detail::makeBuffer<std::uint8_t>(static_cast<std::size_t>(format::padded(length)));
    if (copy == nullptr) return nullptr;
    std::memcpy(copy.get(), bytes, length);
  }
  return detail::makeRawTable(tag, length, std::move(copy));
}

WriterTable* createHeadTable(std::uint32_t fontRevision, std::uint16_t flags,
                             std::uint16_t unitsPerEm, const std::uint8_t* created,
                             std::uint16_t macStyle, std::uint16_t lowestRecPPEM,
                             std::uint16_t fontDirectionHint) noexcept {
  CBuffer<std::uint8_t> bytes = makeBytes<Head>();
  if (bytes == nullptr) return nullptr;
  const auto head = FixedSink<Head>::vouched(bytes.get());
  head.put(Head::kVersion, Head::kVersion1);
  head.put(Head::kFontRevision, fontRevision);
  head.put(Head::kMagicNumber, Head::kMagic);
  head.put(Head::kFlags, flags);
  head.put(Head::kUnitsPerEm, unitsPerEm);
  head.put(Head::kCreated, format::loadBigEndian<std::uint64_t>(created));
  head.put(Head::kMacStyle, macStyle);
  head.put(Head::kLowestRecPPEM, lowestRecPPEM);
  head.put(Head::kFontDirectionHint, fontDirectionHint);
  return makeTable(kTagHead, std::move(bytes));
}

WriterTable* createHheaTable(std::uint16_t ascender, std::uint16_t descender, std::uint16_t lineGap,
                             std::uint16_t caretSlopeRise, std::uint16_t caretSlopeRun) noexcept {
  CBuffer<std::uint8_t> bytes = makeBytes<Hhea>();
  if (bytes == nullptr) return nullptr;
  const auto hhea = FixedSink<Hhea>::vouched(bytes.get());
  hhea.put(Hhea::kVersion, Hhea::kVersion1);
  hhea.put(Hhea::kAscender, static_cast<std::int16_t>(ascender));
  hhea.put(Hhea::kDescender, static_cast<std::int16_t>(descender));
  hhea.put(Hhea::kLineGap, static_cast<std::int16_t>(lineGap));
  hhea.put(Hhea::kCaretSlopeRise, static_cast<std::int16_t>(caretSlopeRise));
  hhea.put(Hhea::kCaretSlopeRun, static_cast<std::int16_t>(caretSlopeRun));
  return makeTable(kTagHhea, std::move(bytes));
}

WriterTable* createLocaTable() noexcept {
  return makeTable(kTagLoca, detail::makeZeroedBuffer<LocaTableData>(1));
}

WriterTable* createMaxpTable(const std::uint8_t* bytes, std::uint32_t length) noexcept {
  CBuffer<std::uint8_t> maxp = makeBytes<Maxp>();
  if (maxp != nullptr && bytes != nullptr && length == Maxp::kSize) {
    std::memcpy(maxp.get(), bytes, Maxp::kSize);
  }
  return makeTable(kTagMaxp, std::move(maxp));
}

WriterTable* createGlyfTable() noexcept { return detail::makeEmptyGlyfTable(); }

WriterTable* createCmapTable() noexcept { return detail::makeEmptyCmapTable(); }

WriterTable* createNameTable(std::int32_t count, const NameRecord* records) noexcept {
  WriterTable* table = detail::makeEmptyNameTable();
  for (std::int32_t i = 0; table != nullptr && i < count; ++i) {
    if (!detail::appendNameRecord(table, records[i], records[i].data, records[i].length)) {
      disposeWriterTable(table);
      return nullptr;
    }
  }
  return table;
}

WriterTable* createPostTable(std::uint32_t italicAngle, std::uint16_t underlinePosition,
                             std::uint16_t underlineThickness,
                             std::uint32_t isFixedPitch) noexcept {
  auto payload = detail::makeBuffer<PostTableData>(1);
  if (payload == nullptr) return nullptr;
  payload[0] = {kPostFormat, italicAngle, underlinePosition, underlineThickness, isFixedPitch};
  return makeTable(kTagPost, std::move(payload));
}

void addCharMapping(WriterTable* cmapTable, std::uint32_t charCode,
                    std::uint32_t glyphId) noexcept {
  detail::appendMapping(cmapTable, charCode, glyphId);
}

std::int32_t addGlyph(WriterTable* glyfTable, GlyphData* glyph, const TrueTypeFont* font) noexcept {
  return detail::appendGlyph(detail::glyfOf(glyfTable), glyph, *font);
}

std::uint32_t glyphCount(const WriterTable* glyfTable) noexcept {
  return detail::glyfOf(glyfTable).glyphs.count;
}

void addNameRecord(WriterTable* nameTable, const NameRecord* record) noexcept {
  if (!detail::appendNameRecord(nameTable, *record, record->data, record->length)) {
    detail::namesOf(nameTable).incomplete = true;
  }
}

WriterResult getTableImage(WriterTable* table, const std::uint8_t** outBytes,
                           std::uint32_t* outLength, std::uint32_t* outTag) noexcept {
  std::free(table->image);
  table->image = nullptr;
  TableImage image{nullptr, 0, 0};
  const std::size_t kind = kindOf(table->tag);
  const WriterResult result =
      kind < kKinds ? kImageHandlers[kind](table, &image) : WriterResultUnknownTable;
  *outBytes = image.bytes;
  *outLength = image.length;
  *outTag = image.tag;
  return result;
}

void disposeWriterTable(WriterTable* table) noexcept {
  if (table == nullptr) return;
  std::free(table->image);
  const std::size_t kind = kindOf(table->tag);
  if (kind < kKinds && table->data != nullptr) kDisposalHandlers[kind](table);
  std::free(table);
}

}  // namespace ulm::truetype
