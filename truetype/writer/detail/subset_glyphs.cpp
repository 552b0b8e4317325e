#include "truetype/writer/detail/subset_glyphs.h"

#include <new>
#include <utility>

#include "truetype/glyph/description.h"
#include "truetype/writer/detail/glyf_table.h"

namespace ulm::truetype::detail {
namespace {

WriterResult resultOf(std::int32_t failure) noexcept {
  return failure == kGlyphTooLarge       ? WriterResultGlyphTooLarge
         : failure == kTooManyGlyphBytes ? WriterResultFileTooLarge
                                         : WriterResultNoMemory;
}

}  // namespace

// The Adder of one `take`.
class SubsetAdder {
 public:
  using Record = SubsetGlyph;

  explicit SubsetAdder(SubsetGlyphs& glyphs) noexcept
      : glyphs_(glyphs), bytesLeft_(maxAddedBytes(glyphs.font_)) {}

  std::int32_t append(IndexEntry& entry) noexcept {
    const GlyphDescription described = describeGlyph(glyphs_.font_, entry.glyph);
    if (described.refusal == GlyphRefusal::TooLarge) return kGlyphTooLarge;
    if (described.refusal != GlyphRefusal::None) return kNoGlyph;
    if (described.length > bytesLeft_) return kTooManyGlyphBytes;
    void* room = glyphs_.arena_.take(sizeof(SubsetGlyph));
    if (room == nullptr) return kGlyphNoMemory;
    bytesLeft_ -= described.length;
    shape_ = {};
    if (!described.isComposite) {
      shape_ = glyphs_.walk_.shapeOf(described.glyph, described.length);
    }
    auto* glyph = new (room) SubsetGlyph{nullptr,
                                         described.ownBytes(),
                                         described.byteCount(),
                                         described.horizontal.advance,
                                         described.horizontal.sideBearing,
                                         static_cast<std::uint16_t>(shape_.points),
                                         static_cast<std::uint16_t>(shape_.contours),
                                         described.isComposite};
    glyphs_.box_.include(glyph->bytes);
    (glyphs_.last_ == nullptr ? glyphs_.first_ : glyphs_.last_->next) = glyph;
    glyphs_.last_ = glyph;
    const std::uint32_t newIndex = glyphs_.count_++;
    if (entry.recordPlusOne == 0) entry.recordPlusOne = glyphs_.count_;
    return static_cast<std::int32_t>(newIndex);
  }
  const SimpleShape& shape() const noexcept { return shape_; }
  SubsetGlyph* last() const noexcept { return glyphs_.last_; }

 private:
  SubsetGlyphs& glyphs_;
  std::uint64_t bytesLeft_;
  SimpleShape shape_{};
};

WriterResult SubsetGlyphs::take(const std::uint16_t* glyphIds, std::size_t count,
                                std::int32_t* newIndices) noexcept {
  RecordIndex& index = walk_.index;
  SubsetAdder adder(*this);
  ComponentWalk<SubsetAdder> walk(walk_, adder, font_);
  for (std::size_t k = 0; k < count; ++k) {
    newIndices[k] = kNoGlyph;
    if (glyphIds[k] >= font_.numGlyphs || count_ > kMaxGlyphCount) continue;
    IndexEntry* const entered = index.enter(glyphIds[k]);
    if (entered == nullptr) return WriterResultNoMemory;
    IndexEntry& entry = *entered;
    newIndices[k] = adder.append(entry);
    if (newIndices[k] == kNoGlyph) continue;
    if (newIndices[k] < 0) return resultOf(newIndices[k]);
    if (!index.visit(entry)) continue;
    if (!last_->isComposite) {
      entry.counts = simpleCounts(adder.shape());
      continue;
    }
    const std::int32_t failure = walk.run(entry, last_);
    if (failure != 0) return resultOf(failure);
  }
  return WriterResultOk;
}

GlyphTotals SubsetGlyphs::measure(std::uint32_t* offsets,
                                  format::ArraySink<std::uint32_t> metrics) const noexcept {
  const SubsetGlyph* glyph = first_;
  const auto next = [&glyph]() -> const SubsetGlyph& { return *std::exchange(glyph, glyph->next); };
  return GlyphTotals::of(count_, next, offsets, metrics);
}

// References are rewritten in the file, since the bytes are the font's.
WriterResult SubsetGlyphs::renumber(FontBox* outBox) noexcept {
  *outBox = box_;
  return WriterResultOk;
}

void SubsetGlyphs::write(format::ByteSink out) const noexcept {
  std::size_t offset = 0;
  for (const SubsetGlyph* glyph = first_; glyph != nullptr; glyph = glyph->next) {
    const std::size_t length = glyph->bytes.size();
    out.copy(offset, glyph->bytes);
    if (length != glyph->byteCount) out.put<std::uint8_t>(offset + length, 0);
    if (glyph->isComposite) {
      renumberComponents(out.sub(offset, glyph->byteCount), walk_.index, count_);
    }
    offset += glyph->byteCount;
  }
}

}  // namespace ulm::truetype::detail
