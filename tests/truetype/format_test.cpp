// The views and sinks through which font bytes go. The offsets that they are given are held by the
// tests of the tables, which have numbers of their own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "truetype/format/byte_sink.h"
#include "truetype/format/byte_view.h"
#include "truetype/format/glyf.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/name.h"

namespace {

using namespace ulm::truetype::format;

template <class View, class Field>
concept Gets = requires(View view, Field field) {
  view.get(field);
};
template <class Sink, class Field>
concept Puts = requires(Sink sink, Field field) {
  sink.put(field, 0);
};

// A field outside the bytes that a view or sink has, or of another record, does not compile.
using UnitsPerEm = decltype(Head::kUnitsPerEm);
static_assert(Gets<FixedView<Head, 20>, UnitsPerEm> && Puts<FixedSink<Head, 20>, UnitsPerEm>);
static_assert(!Gets<FixedView<Head, 19>, UnitsPerEm> && !Puts<FixedSink<Head, 19>, UnitsPerEm>);
static_assert(!Gets<FixedView<Hhea>, UnitsPerEm> && !Puts<FixedSink<Hhea>, UnitsPerEm>);

TEST(Format, AViewOfFieldsIsThereWithTheLastByteOfThem) {
  std::vector<std::uint8_t> bytes(20);
  bytes[18] = 0x08;
  const auto fields = RecordView<Head>({bytes.data(), 20}).holding(Head::kUnitsPerEm, Head::kFlags);
  ASSERT_TRUE(fields);
  EXPECT_EQ(fields->get(Head::kUnitsPerEm), 0x0800);
  EXPECT_FALSE(RecordView<Head>({bytes.data(), 19}).holding(Head::kFlags, Head::kUnitsPerEm));
}

// Each writes at an offset of a sink of 24 bytes, and needs so many bytes from there on.
struct Write {
  std::size_t needed;
  void (*at)(const ByteSink& sink, std::size_t offset);
};
const Write kWrites[] = {
    {2, [](const ByteSink& sink, std::size_t at) { sink.put<std::uint16_t>(at, 0xFFFF); }},
    {8, [](const ByteSink& sink, std::size_t at) { sink.put<std::int64_t>(at, -1); }},
    {4, [](const ByteSink& sink, std::size_t at) { sink.clear(at, 4); }},
    {3,
     [](const ByteSink& sink, std::size_t at) {
       const std::uint8_t bytes[3] = {1, 2, 3};
       sink.copy(at, {bytes, sizeof bytes});
     }},
    {12, [](const ByteSink& sink,
            std::size_t at) { sink.record<NameEntry>(at).put(NameEntry::kOffset, 0xFFFF); }},
    {12, [](const ByteSink& sink, std::size_t at) { sink.sub(at, 12).put<std::uint8_t>(11, 1); }},
    {6, [](const ByteSink& sink, std::size_t at) { sink.array<std::uint16_t>(at, 3).put(2, 7); }},
};

TEST(Format, AWriteThatDoesNotFitChangesNothingAndIsReported) {
  constexpr std::size_t kSize = 24;
  for (const Write& write : kWrites) {
    for (const std::size_t offset : {std::size_t{0}, kSize - write.needed, kSize - write.needed + 1,
                                     kSize, kSize + 1, SIZE_MAX}) {
      const bool fits = offset <= kSize - write.needed;
      std::vector<std::uint8_t> bytes(kSize, 0x55);  // an exact block: a byte too far is caught
      bool overflowed = false;
      write.at({bytes.data(), kSize, &overflowed}, offset);
      EXPECT_EQ(overflowed, !fits) << write.needed << " at " << offset;
      EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0x55) == kSize, !fits);
    }
  }
  bool overflowed = false;
  std::uint8_t bytes[8] = {};
  const ByteSink sink(bytes, sizeof bytes, &overflowed);
  sink.array(Loca::kLongOffsets, 1).put(1, 0xFFFFFFFF);
  EXPECT_TRUE(overflowed);
  EXPECT_EQ(bytes[4], 0);
}

}  // namespace
