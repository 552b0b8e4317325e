// The font reader on real fonts, next to FreeType, HarfBuzz and stb_truetype if they are available.
// Each time is of one pass: an open, all mapped characters, or all glyphs.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "truetype/bytes.h"
#include "truetype/reader/glyphs.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"
#include "truetype/reader/open.h"

#ifdef ULM_BENCH_FREETYPE
#include <ft2build.h>
#include FT_ADVANCES_H
#include FT_FREETYPE_H
#endif
#ifdef ULM_BENCH_HARFBUZZ
#include <hb-ot.h>
#include <hb.h>
#endif
#ifdef ULM_BENCH_STB
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wcast-align"
#pragma GCC diagnostic ignored "-Wshadow"
#define STBTT_STATIC
#define STB_TRUETYPE_IMPLEMENTATION
#include <stb/stb_truetype.h>
#pragma GCC diagnostic pop
#endif

namespace {

using namespace ulm::truetype;

constexpr const char* kFiles[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                                  "/usr/share/fonts/truetype/freefont/FreeSerif.ttf",
                                  "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf",
                                  "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"};

struct Subject {
  std::vector<std::uint8_t> image;
  TrueTypeFont* font = nullptr;
  std::vector<std::uint16_t> codes;     // the mapped characters, ascending
  std::vector<std::uint16_t> shuffled;  // the same in random order
  std::uint64_t points = 0;

  explicit Subject(const char* file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    image.assign(bytes.begin(), bytes.end());
    if (open(&font) != FontResultOk || font->cmapLookup == nullptr) return;
    for (std::uint32_t code = 0; code < 0x10000; ++code) {
      const auto narrow = static_cast<std::uint16_t>(code);
      if (font->cmapLookup(font->cmapSubtable, narrow) != 0) codes.push_back(narrow);
    }
    shuffled = codes;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(1));
    for (std::uint32_t glyph = 0; glyph < font->numGlyphs; ++glyph) {
      GlyphPoint* made = nullptr;
      const std::int32_t count = getGlyphPoints(font, glyph, &made);
      if (count > 0) points += static_cast<std::uint64_t>(count);
      std::free(made);
    }
  }
  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;
  ~Subject() { closeTrueTypeFont(font); }
  FontResult open(TrueTypeFont** out) const {
    return openTrueTypeFont("f", image.data(), static_cast<std::int32_t>(image.size()), 0, out);
  }
};

// Null if the font is not installed.
const Subject* subjectOf(benchmark::State& state) {
  static std::unique_ptr<Subject> subjects[std::size(kFiles)];
  const auto index = static_cast<std::size_t>(state.range(0));
  const std::string file = kFiles[index];
  state.SetLabel(file.substr(file.rfind('/') + 1));
  if (subjects[index] == nullptr) subjects[index] = std::make_unique<Subject>(kFiles[index]);
  if (subjects[index]->font != nullptr) return subjects[index].get();
  state.SkipWithError("the font is not installed");
  return nullptr;
}

template <class Work>
void run(benchmark::State& state, std::uint64_t items, Work work) {
  for (auto _ : state) work();
  const auto all = state.iterations() * static_cast<std::int64_t>(items);
  state.SetItemsProcessed(all);
  state.counters["each"] = benchmark::Counter(
      static_cast<double>(all), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

using Body = void (*)(benchmark::State&, const Subject&);
template <Body Of>
void on(benchmark::State& state) {
  if (const Subject* subject = subjectOf(state)) Of(state, *subject);
}

void openUlmira(benchmark::State& state, const Subject& subject) {
  run(state, 1, [&] {
    TrueTypeFont* font = nullptr;
    subject.open(&font);
    benchmark::DoNotOptimize(font);
    closeTrueTypeFont(font);
  });
}

// The loader selects a clone before the run-time of the thread sanitizer is initialised, so there
// is only one version with that sanitizer.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__SANITIZE_THREAD__)
#define ULM_BENCH_VECTORS __attribute__((target_clones("avx2", "default")))
#else
#define ULM_BENCH_VECTORS
#endif
// A copy that swaps bytes, at the speed of the processor's vector instructions.
ULM_BENCH_VECTORS void swapCopy32(const std::uint8_t* bytes, std::size_t count,
                                  std::uint32_t* __restrict out) {
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t value;
    std::memcpy(&value, bytes + 4 * i, 4);
    out[i] = __builtin_bswap32(value);
  }
}
ULM_BENCH_VECTORS void swapCopy16(const std::uint8_t* bytes, std::size_t count,
                                  std::uint32_t* __restrict out) {
  for (std::size_t i = 0; i < count; ++i) {
    std::uint16_t value;
    std::memcpy(&value, bytes + 2 * i, 2);
    out[i] = 2u * __builtin_bswap16(value);
  }
}

// The part of open that cannot be avoided: loca is swapped into new memory.
void openLocaCopy(benchmark::State& state, const Subject& subject) {
  const TrueTypeFont& font = *subject.font;
  const std::uint8_t* loca = font.tables[kSlotLoca];
  const std::size_t count = font.numGlyphs + std::size_t{1};
  const bool isLong = readInt16(font.tables[kSlotHead], 50) == 1;
  run(state, 1, [&] {
    auto* out = static_cast<std::uint32_t*>(std::malloc(count * sizeof(std::uint32_t)));
    (isLong ? swapCopy32 : swapCopy16)(loca, count, out);
    benchmark::DoNotOptimize(out);
    benchmark::ClobberMemory();
    std::free(out);
  });
}

template <bool Shuffled>
void mapUlmira(benchmark::State& state, const Subject& subject) {
  const auto& codes = Shuffled ? subject.shuffled : subject.codes;
  const TrueTypeFont& font = *subject.font;
  run(state, codes.size(), [&] {
    for (const std::uint16_t code : codes) {
      benchmark::DoNotOptimize(font.cmapLookup(font.cmapSubtable, code));
    }
  });
}

void advanceUlmira(benchmark::State& state, const Subject& subject) {
  run(state, subject.font->numGlyphs, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      GlyphMetrics metrics;
      readGlyphMetrics(subject.font, glyph, &metrics);
      benchmark::DoNotOptimize(metrics);
    }
  });
}

void boxUlmira(benchmark::State& state, const Subject& subject) {
  run(state, subject.font->numGlyphs, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      GlyphMetrics metrics{};
      readGlyphBox(subject.font, glyph, &metrics);
      benchmark::DoNotOptimize(metrics);
    }
  });
}

void outlinesUlmira(benchmark::State& state, const Subject& subject) {
  run(state, subject.points, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      GlyphPoint* points = nullptr;
      benchmark::DoNotOptimize(getGlyphPoints(subject.font, glyph, &points));
      std::free(points);
    }
  });
}

void outlinesIntoBuffer(benchmark::State& state, const Subject& subject) {
  std::vector<GlyphPoint> room(65536);
  run(state, subject.points, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      auto count = static_cast<std::uint32_t>(room.size());
      benchmark::DoNotOptimize(decodeGlyphPoints(subject.font, glyph, room.data(), &count));
    }
  });
}

void kernUlmira(benchmark::State& state, const Subject& subject) {
  const TrueTypeFont& font = *subject.font;
  run(state, 96 * 96, [&] {
    for (std::uint32_t left = 3; left < 99; ++left) {
      for (std::uint32_t right = 3; right < 99; ++right) {
        std::int32_t x, y;
        getPairKerning(font.kernType, font.kernTableCount, font.kernTables, font.unitsPerEm, 0,
                       left, right, &x, &y);
        benchmark::DoNotOptimize(x);
      }
    }
  });
}

#define ULM_BENCH_ON(body, name) \
  BENCHMARK(on<body>)->Name("truetype/" name)->ArgName("font")->DenseRange(0, 3)
ULM_BENCH_ON(openUlmira, "open/ulmira");
ULM_BENCH_ON(openLocaCopy, "open/limit");
ULM_BENCH_ON(mapUlmira<false>, "map/ulmira");
ULM_BENCH_ON(mapUlmira<true>, "map_shuffled/ulmira");
ULM_BENCH_ON(advanceUlmira, "advance/ulmira");
ULM_BENCH_ON(boxUlmira, "box/ulmira");
ULM_BENCH_ON(outlinesUlmira, "outlines/ulmira");
ULM_BENCH_ON(outlinesIntoBuffer, "outlines/ulmira_buffer");
ULM_BENCH_ON(kernUlmira, "kern/ulmira");

#ifdef ULM_BENCH_FREETYPE
class FreeTypeFace {
 public:
  explicit FreeTypeFace(const Subject& subject) {
    FT_Init_FreeType(&library_);
    open(subject, &face);
    for (int i = 0; i < face->num_charmaps; ++i) {
      const FT_CharMap map = face->charmaps[i];
      if (map->platform_id == 3 && map->encoding_id == 1) FT_Set_Charmap(face, map);
    }
  }
  FreeTypeFace(const FreeTypeFace&) = delete;
  FreeTypeFace& operator=(const FreeTypeFace&) = delete;
  ~FreeTypeFace() {
    FT_Done_Face(face);
    FT_Done_FreeType(library_);
  }
  void open(const Subject& subject, FT_Face* out) {
    FT_New_Memory_Face(library_, subject.image.data(), static_cast<FT_Long>(subject.image.size()),
                       0, out);
  }
  FT_Face face = nullptr;

 private:
  FT_Library library_ = nullptr;
};

void openFreeType(benchmark::State& state, const Subject& subject) {
  FreeTypeFace peer(subject);
  run(state, 1, [&] {
    FT_Face face = nullptr;
    peer.open(subject, &face);
    FT_Done_Face(face);
  });
}
template <bool Shuffled>
void mapFreeType(benchmark::State& state, const Subject& subject) {
  const auto& codes = Shuffled ? subject.shuffled : subject.codes;
  const FreeTypeFace peer(subject);
  run(state, codes.size(), [&] {
    for (const std::uint16_t code : codes) {
      benchmark::DoNotOptimize(FT_Get_Char_Index(peer.face, code));
    }
  });
}
void advanceFreeType(benchmark::State& state, const Subject& subject) {
  const FreeTypeFace peer(subject);
  run(state, subject.font->numGlyphs, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      FT_Fixed advance = 0;
      FT_Get_Advance(peer.face, glyph, FT_LOAD_NO_SCALE, &advance);
      benchmark::DoNotOptimize(advance);
    }
  });
}
void outlinesFreeType(benchmark::State& state, const Subject& subject) {
  const FreeTypeFace peer(subject);
  run(state, subject.points, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      FT_Load_Glyph(peer.face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING);
      benchmark::DoNotOptimize(peer.face->glyph->outline.n_points);
    }
  });
}
void kernFreeType(benchmark::State& state, const Subject& subject) {
  const FreeTypeFace peer(subject);
  run(state, 96 * 96, [&] {
    for (std::uint32_t left = 3; left < 99; ++left) {
      for (std::uint32_t right = 3; right < 99; ++right) {
        FT_Vector kerning;
        FT_Get_Kerning(peer.face, left, right, FT_KERNING_UNSCALED, &kerning);
        benchmark::DoNotOptimize(kerning);
      }
    }
  });
}
ULM_BENCH_ON(openFreeType, "open/freetype");
ULM_BENCH_ON(mapFreeType<false>, "map/freetype");
ULM_BENCH_ON(mapFreeType<true>, "map_shuffled/freetype");
ULM_BENCH_ON(advanceFreeType, "advance/freetype");
ULM_BENCH_ON(outlinesFreeType, "outlines/freetype");
ULM_BENCH_ON(kernFreeType, "kern/freetype");
#endif

#ifdef ULM_BENCH_HARFBUZZ
class HarfBuzzFont {
 public:
  explicit HarfBuzzFont(const Subject& subject) {
    hb_blob_t* blob = hb_blob_create(reinterpret_cast<const char*>(subject.image.data()),
                                     static_cast<unsigned>(subject.image.size()),
                                     HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t* face = hb_face_create(blob, 0);
    font = hb_font_create(face);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
  }
  HarfBuzzFont(const HarfBuzzFont&) = delete;
  HarfBuzzFont& operator=(const HarfBuzzFont&) = delete;
  ~HarfBuzzFont() { hb_font_destroy(font); }
  hb_font_t* font;
};

template <bool Shuffled>
void mapHarfBuzz(benchmark::State& state, const Subject& subject) {
  const auto& codes = Shuffled ? subject.shuffled : subject.codes;
  const HarfBuzzFont peer(subject);
  run(state, codes.size(), [&] {
    for (const std::uint16_t code : codes) {
      hb_codepoint_t glyph = 0;
      hb_font_get_nominal_glyph(peer.font, code, &glyph);
      benchmark::DoNotOptimize(glyph);
    }
  });
}
void advanceHarfBuzz(benchmark::State& state, const Subject& subject) {
  const HarfBuzzFont peer(subject);
  run(state, subject.font->numGlyphs, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      benchmark::DoNotOptimize(hb_font_get_glyph_h_advance(peer.font, glyph));
    }
  });
}
void boxHarfBuzz(benchmark::State& state, const Subject& subject) {
  const HarfBuzzFont peer(subject);
  run(state, subject.font->numGlyphs, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      hb_glyph_extents_t extents;
      hb_font_get_glyph_extents(peer.font, glyph, &extents);
      benchmark::DoNotOptimize(extents);
    }
  });
}
// The minimum for a caller: callbacks that ignore their arguments.
void outlinesHarfBuzz(benchmark::State& state, const Subject& subject) {
  const HarfBuzzFont peer(subject);
  hb_draw_funcs_t* draw = hb_draw_funcs_create();
  hb_draw_funcs_make_immutable(draw);
  run(state, subject.points, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      hb_font_get_glyph_shape(peer.font, glyph, draw, nullptr);
    }
  });
  hb_draw_funcs_destroy(draw);
}
ULM_BENCH_ON(mapHarfBuzz<false>, "map/harfbuzz");
ULM_BENCH_ON(mapHarfBuzz<true>, "map_shuffled/harfbuzz");
ULM_BENCH_ON(advanceHarfBuzz, "advance/harfbuzz");
ULM_BENCH_ON(boxHarfBuzz, "box/harfbuzz");
ULM_BENCH_ON(outlinesHarfBuzz, "outlines/harfbuzz");
#endif

#ifdef ULM_BENCH_STB
void outlinesStb(benchmark::State& state, const Subject& subject) {
  stbtt_fontinfo info;
  if (stbtt_InitFont(&info, subject.image.data(),
                     stbtt_GetFontOffsetForIndex(subject.image.data(), 0)) == 0) {
    return state.SkipWithError("the peer refuses the font");
  }
  run(state, subject.points, [&] {
    for (std::uint32_t glyph = 0; glyph < subject.font->numGlyphs; ++glyph) {
      stbtt_vertex* vertices = nullptr;
      benchmark::DoNotOptimize(stbtt_GetGlyphShape(&info, static_cast<int>(glyph), &vertices));
      stbtt_FreeShape(&info, vertices);
    }
  });
}
ULM_BENCH_ON(outlinesStb, "outlines/stb_truetype");
#endif

}  // namespace

BENCHMARK_MAIN();
