// The glyf table object: a list of owned glyph records, and its glyphs as a new font's.
#pragma once

#include <cstdint>
#include <type_traits>

#include "truetype/font.h"
#include "truetype/list.h"
#include "truetype/records.h"
#include "truetype/writer/detail/component_walk.h"
#include "truetype/writer/detail/new_glyphs.h"
#include "truetype/writer/detail/table_object.h"
#include "truetype/writer/table.h"

namespace ulm::truetype::detail {

// The list comes first, so that the payload is also the list.
struct GlyfPayload {
  TTList glyphs;
  WalkState walk;
};
static_assert(std::is_standard_layout_v<GlyfPayload>);

inline GlyfPayload& glyfOf(const WriterTable* table) noexcept {
  return *static_cast<GlyfPayload*>(table->data);
}

WriterTable* makeEmptyGlyfTable() noexcept;  // null without memory
void disposeGlyf(WriterTable* table) noexcept;

// As addGlyph.
std::int32_t appendGlyph(GlyfPayload& table, GlyphData* glyph, const TrueTypeFont& font) noexcept;

// The image handler: WriterResultEmptyTable, WriterResultFileTooLarge or WriterResultNoMemory, with
// `out` as it was.
WriterResult makeGlyfImage(WriterTable* table, TableImage* out) noexcept;

// Makes the references of a composite those of the new font: to the first records of the glyphs, or
// to `absent` where one has none.
void renumberComponents(format::ByteSink glyph, const RecordIndex& index,
                        std::uint32_t absent) noexcept;

// The glyphs of a glyf table. `renumber` rewrites the records' data.
class ListedGlyphs final : public NewGlyphs {
 public:
  explicit ListedGlyphs(GlyfPayload& table) noexcept : table_(table) {}

  std::uint32_t count() const noexcept override { return table_.glyphs.count; }
  GlyphTotals measure(std::uint32_t* offsets,
                      format::ArraySink<std::uint32_t> metrics) const noexcept override;
  WriterResult renumber(FontBox* outBox) noexcept override;
  void write(format::ByteSink out) const noexcept override;

 private:
  GlyfPayload& table_;
};

}  // namespace ulm::truetype::detail
