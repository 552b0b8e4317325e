#include "truetype/writer/table.h"

#include <cstdio>
#include <cstring>
#include <new>

#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype {
namespace {

using detail::CBuffer;
using detail::TableImage;
using format::FixedSink;
using format::Head, format::Hhea, format::Maxp, format::Post;

constexpr std::uint32_t kFirstSubtables = 10;

// An object that takes over its payload; null, the payload being freed, where either is missing.
template <class Payload>
WriterTable* makeTable(std::uint32_t tag, CBuffer<Payload> payload) noexcept {
  if (payload == nullptr) return nullptr;
  auto* table = static_cast<WriterTable*>(std::malloc(sizeof(WriterTable)));
  if (table != nullptr) *table = {tag, nullptr, payload.release()};
  return table;
}

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
  detail::NewImage image(table, Post::kSize);
  if (!image.hasMemory()) return WriterResultNoMemory;
  image.bytes().clear(0, Post::kSize);
  const auto fields = image.bytes().record<Post>(0);
  fields.put(Post::kVersion, post.format);
  fields.put(Post::kItalicAngle, static_cast<std::int32_t>(post.italicAngle));
  fields.put(Post::kUnderlinePosition, static_cast<std::int16_t>(post.underlinePosition));
  fields.put(Post::kUnderlineThickness, static_cast<std::int16_t>(post.underlineThickness));
  fields.put(Post::kIsFixedPitch, post.isFixedPitch);
  return image.finish(kTagPost, out);
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

void disposeGlyf(WriterTable* table) noexcept {
  detail::disposeGlyphs(static_cast<detail::GlyfPayload*>(table->data));
}

void disposeCmap(WriterTable* table) noexcept {
  auto* cmap = static_cast<CmapTableData*>(table->data);
  for (std::uint32_t i = 0; i < cmap->subtableCount; ++i) {
    std::free(cmap->subtables[i].charCodes);
    std::free(cmap->subtables[i].glyphIds);
  }
  std::free(cmap->subtables);
  std::free(cmap);
}

void disposeName(WriterTable* table) noexcept {
  listClear(detail::listOf(table));
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

// Three tables of nine rows, indexed alike.
constexpr std::size_t kKinds = 9;
constexpr std::uint32_t kTags[kKinds] = {kTagRaw,  kTagHead, kTagHhea, kTagLoca, kTagMaxp,
                                         kTagGlyf, kTagCmap, kTagName, kTagPost};
constexpr ImageHandler kImageHandlers[kKinds] = {
    giveRaw,         giveBytes<Head>,       giveBytes<Hhea>,       giveLoca,
    giveBytes<Maxp>, detail::makeGlyfImage, detail::makeCmapImage, detail::makeNameImage,
    makePostImage};
constexpr DisposalHandler kDisposalHandlers[kKinds] = {disposeRaw,  disposeBytes, disposeBytes,
                                                       disposeLoca, disposeBytes, disposeGlyf,
                                                       disposeCmap, disposeName,  disposePost};

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
    copy = detail::makeBuffer<std::uint8_t>(static_cast<std::size_t>(detail::padded(length)));
    if (copy == nullptr) return nullptr;
    std::memcpy(copy.get(), bytes, length);
  }
  return detail::adoptRawTable(tag, length, std::move(copy));
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

WriterTable* createGlyfTable() noexcept {
  CBuffer<std::uint8_t> room = detail::makeBuffer<std::uint8_t>(sizeof(detail::GlyfPayload));
  if (room == nullptr) return nullptr;
  auto* payload = new (room.get()) detail::GlyfPayload{};  // owns nothing yet
  listSetDestructor(&payload->glyphs, detail::freeGlyphData);
  return makeTable(kTagGlyf, std::move(room));
}

WriterTable* createCmapTable() noexcept {
  auto payload = detail::makeZeroedBuffer<CmapTableData>(1);
  auto subtables = detail::makeZeroedBuffer<CmapSubtable>(kFirstSubtables);
  if (payload == nullptr || subtables == nullptr) return nullptr;
  CmapTableData& cmap = payload[0];
  cmap.capacity = kFirstSubtables;
  WriterTable* table = makeTable(kTagCmap, std::move(payload));
  if (table != nullptr) cmap.subtables = subtables.release();
  return table;
}

WriterTable* createNameTable(std::int32_t count, const NameRecord* records) noexcept {
  auto payload = detail::makeZeroedBuffer<detail::NamePayload>(1);
  if (payload == nullptr) return nullptr;
  listSetDestructor(&payload[0].records, detail::freeNameRecord);
  WriterTable* table = makeTable(kTagName, std::move(payload));
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

WriterResult getTableImage(WriterTable* table, const std::uint8_t** outBytes,
                           std::uint32_t* outLength, std::uint32_t* outTag) noexcept {
  TableImage image;
  const WriterResult result = detail::makeTableImage(table, &image);
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

namespace detail {

WriterTable* adoptRawTable(std::uint32_t tag, std::uint32_t length,
                           CBuffer<std::uint8_t> bytes) noexcept {
  auto payload = makeBuffer<RawTableData>(1);
  if (payload == nullptr) return nullptr;
  for (std::size_t i = length; i < padded(length); ++i) bytes[i] = 0;
  RawTableData& raw = payload[0];
  raw = {tag, length, nullptr};
  WriterTable* table = makeTable(kTagRaw, std::move(payload));
  if (table != nullptr) raw.bytes = bytes.release();
  return table;
}

WriterResult makeTableImage(WriterTable* table, TableImage* out) noexcept {
  *out = {nullptr, 0, 0};
  std::free(table->image);
  table->image = nullptr;
  const std::size_t kind = kindOf(table->tag);
  return kind < kKinds ? kImageHandlers[kind](table, out) : WriterResultUnknownTable;
}

std::uint8_t* makeImage(WriterTable* table, std::uint32_t length) noexcept {
  const auto room = static_cast<std::size_t>(padded(length));
  CBuffer<std::uint8_t> image = makeBuffer<std::uint8_t>(room);
  if (image == nullptr) return nullptr;
  std::memset(image.get() + length, 0, room - length);
  table->image = image.release();
  return table->image;
}

}  // namespace detail
}  // namespace ulm::truetype
