// The most work that an input of its size can cost, for each operation that reads untrusted data.
// Each row keeps the input that costs it. Next to the time it reports the input's bytes, the most
// memory held, and both as shares of what is promised: an operation above 1 breaks a promise.
//   one glyph, code or pair    50 ms and 20 ns for each byte of the input
//   a whole font or document   1 s and 1 us for each byte
//   memory                     64 MB and 20 times the input
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <new>
#include <string>

#include "clip/growable/polygon_array.h"
#include "tests/support/c_heap.h"
#include "tests/truetype/hostile_fonts.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"
#include "truetype/reader/names.h"
#include "truetype/writer/subset.h"
#ifdef ULM_BENCH_DOCUMENTS
#include "command/clip_document.h"
#endif

// The containers' memory counts like that of the libraries.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

enum class Scope { One, Whole };

// Times `operation` over an input of `bytes` bytes and sets the counters.
template <class Operation>
void measure(benchmark::State& state, Scope scope, std::size_t bytes, Operation operation) {
  const auto size = static_cast<double>(bytes);
  double slowest = 0;
  std::int64_t most = 0;
  for (auto _ : state) {
    const std::int64_t held = cHeap.mostBytesHeld = cHeap.bytesHeld;
    const auto start = std::chrono::steady_clock::now();
    operation();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    slowest = std::max(slowest, taken.count());
    most = std::max(most, cHeap.mostBytesHeld - held);
  }
  const double allowed = scope == Scope::One ? 0.05 + 20e-9 * size : 1 + 1e-6 * size;
  state.counters["input"] = size;
  state.counters["time_share"] = slowest / allowed;
  if (most == 0) return;  // nothing, or memory of the object runtime, which is not counted
  state.counters["memory"] = static_cast<double>(most);
  state.counters["memory_share"] = static_cast<double>(most) / (64e6 + 20 * size);
}

using Image = FontImage (*)();

void subsetOfAll(benchmark::State& state, Image make) {
  const Bytes image = make().build();
  const OpenFont font(image);
  std::vector<std::uint16_t> all(font->numGlyphs);
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint16_t>(i);
  measure(state, Scope::Whole, image.size(), [&] {
    std::vector<std::uint16_t> glyphs = all;
    std::uint8_t* made = nullptr;
    std::uint32_t length = 0;
    createTrueTypeSubset(font.get(), &made, &length, glyphs.data(), all.data(),
                         static_cast<std::int32_t>(all.size()), 0, nullptr, 0);
    std::free(made);
  });
}

template <class Operation>
void onGlyph(benchmark::State& state, std::uint32_t glyph, Operation operation) {
  const Bytes image = deepTower().build();
  const OpenFont font(image);
  measure(state, Scope::One, image.size(), [&] { operation(font.get(), glyph); });
}

void outline(const TrueTypeFont* font, std::uint32_t glyph) {
  GlyphPoint* points = nullptr;
  getGlyphPoints(font, glyph, &points);
  std::free(points);
}
void data(const TrueTypeFont* font, std::uint32_t glyph) { glyphOf(font, glyph); }
void components(const TrueTypeFont* font, std::uint32_t glyph) {
  TTList* const list = listCreate();
  collectGlyphComponents(font, glyph, list);
  listDispose(list);
}

// Names that all share one long string.
FontImage sharedNames() {
  constexpr int kRecords = 5000;
  Bytes names = Bytes().u16({0, kRecords, 6 + 12 * kRecords});
  for (int i = 0; i < kRecords; ++i) names.u16({3, 1, 1033, i, 65534, 0});
  return FontImage().table("name", names.zeros(65534));
}

// As many subtables as the table can have; a request bisects each.
FontImage manySubtables() {
  constexpr int kSubtables = 65535;
  Bytes kern = Bytes().u16({0, kSubtables});
  for (int i = 0; i < kSubtables; ++i) kern.u16({0, 20, 1, 1, 6, 0, 0, 2, 3, 7});
  return FontImage().also("kern", kern);
}

// Segments that overlap, at the end of the image, where open proves each.
FontImage manySegments() {
  std::vector<Segment> segments(8188, Segment{0, 0xFFFE, 1, 0});
  segments.push_back({-1, -1, 1, 0});
  return FontImage().table("cmap", cmapTable({{3, 1, cmapFormat4(segments)}})).last("cmap");
}

void open(benchmark::State& state, Image make) {
  const Bytes image = make().build();
  measure(state, Scope::Whole, image.size(), [&] { OpenFont font(image); });
}
void names(benchmark::State& state) {
  const Bytes image = sharedNames().build();
  const OpenFont font(image);
  measure(state, Scope::Whole, image.size(), [&] {
    NameRecord* records = nullptr;
    releaseNameRecords(records, getNameRecords(font.get(), &records));
  });
}
void kerning(benchmark::State& state) {
  const Bytes image = manySubtables().build();
  const OpenFont font(image);
  const std::uint16_t pair[] = {2, 4};  // which no subtable holds, so that all are searched
  measure(state, Scope::One, image.size(), [&] {
    KernAdjustment adjustment;
    getRunKerning(font.get(), pair, 2, 0, &adjustment);
  });
}
void codes(benchmark::State& state) {
  const Bytes image = manySegments().build();
  const OpenFont font(image);
  measure(state, Scope::One, image.size(), [&] {
    if (font->cmapLookup != nullptr) {
      benchmark::DoNotOptimize(font->cmapLookup(font->cmapSubtable, 0xFFFD));
    }
  });
}
void boxes(benchmark::State& state) {
  const Bytes image = outlinesThatRunOn().build();
  const OpenFont font(image);
  measure(state, Scope::Whole, image.size(), [&] { std::free(readAllGlyphBoxes(font.get())); });
}

// A saw whose every edge crosses every plane that it can.
void saw(benchmark::State& state) {
  using namespace ulm::clip;
  constexpr std::uint32_t kVertices = 1u << 20;
  ClipPolygonArray polygon(kVertices, true);
  for (std::uint32_t i = 0; i < kVertices; ++i) {
    const double end = i % 2 == 0 ? 3 : -3;
    polygon.vertexForWrite(i) = {end, end / 2, -end, 1, 0};
  }
  computeOutcode(polygon);
  measure(state, Scope::Whole, kVertices * 4 * sizeof(double), [&] {
    ClipPolygonArray copy = polygon;
    benchmark::DoNotOptimize(clipPolygonArrayInPlace(copy));
  });
}

#ifdef ULM_BENCH_DOCUMENTS
void document(benchmark::State& state, const std::string& unit, const std::string& start) {
  std::string text = start;
  while (text.size() < (1u << 22)) text += unit;
  measure(state, Scope::Whole, text.size(), [&] {
    try {
      ulm::tools::readClipDocument<double>(text, false);
    } catch (const ulm::tools::ClipInputError&) {
    }
  });
}
#endif

}  // namespace

BENCHMARK_CAPTURE(subsetOfAll, cycles, cycles)->Name("font/subset/cycles")->Iterations(1);
BENCHMARK_CAPTURE(subsetOfAll, one, oneComposite)->Name("font/subset/shared")->Iterations(1);
BENCHMARK_CAPTURE(subsetOfAll, chains, chainsThatRunOn)->Name("font/subset/chains")->Iterations(1);
BENCHMARK_CAPTURE(subsetOfAll, outlines, outlinesThatRunOn)
    ->Name("font/subset/outlines")
    ->Iterations(1);
BENCHMARK_CAPTURE(onGlyph, tower, 16, outline)->Name("font/outline/tower")->Iterations(3);
BENCHMARK_CAPTURE(onGlyph, beyond, 116, outline)->Name("font/outline/beyond")->Iterations(3);
BENCHMARK_CAPTURE(onGlyph, data, 116, data)->Name("font/glyph_data")->Iterations(3);
BENCHMARK_CAPTURE(onGlyph, components, 16, components)->Name("font/components")->Iterations(3);
BENCHMARK_CAPTURE(open, names, sharedNames)->Name("font/open/names")->Iterations(3);
BENCHMARK_CAPTURE(open, kern, manySubtables)->Name("font/open/kern")->Iterations(3);
BENCHMARK_CAPTURE(open, cmap, manySegments)->Name("font/open/cmap")->Iterations(3);
BENCHMARK(names)->Name("font/names")->Iterations(3);
BENCHMARK(kerning)->Name("font/pair")->Iterations(3);
BENCHMARK(codes)->Name("font/code")->Iterations(3);
BENCHMARK(boxes)->Name("font/boxes")->Iterations(3);
BENCHMARK(saw)->Name("clip/saw")->Iterations(1);
#ifdef ULM_BENCH_DOCUMENTS
BENCHMARK_CAPTURE(document, blanks, std::string(4096, ' '), "{")
    ->Name("document/blanks")
    ->Iterations(1);
BENCHMARK_CAPTURE(document, numbers, "[0,0,0,0],", "{\"polygons\":[[")
    ->Name("document/vertices")
    ->Iterations(1);
BENCHMARK_CAPTURE(document, digits, "9", "{\"polygons\":[[[0.")
    ->Name("document/digits")
    ->Iterations(1);
BENCHMARK_CAPTURE(document, shapes, "null,", "{\"polygons\":[")
    ->Name("document/nulls")
    ->Iterations(1);
BENCHMARK_CAPTURE(document, lines, "null\n\n", "")->Name("document/text")->Iterations(1);
#endif
BENCHMARK_MAIN();
