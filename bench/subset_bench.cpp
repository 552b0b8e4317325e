// Subsets of real fonts, next to HarfBuzz's subsetter if it is available. Both keep the hints, the
// outline of .notdef and OS/2, and omit layout, kerning and glyph names; the names are the two
// fixed ones. The lists are made and the sources are opened before the time is taken, except in
// "opened", whose time includes the opening of the source. A font with fewer characters gives all
// of them.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "truetype/reader/open.h"
#include "truetype/writer/subset.h"

#ifdef ULM_BENCH_HARFBUZZ_SUBSET
#include <hb-subset.h>
#include <hb.h>
#endif

namespace {

using namespace ulm::truetype;

constexpr const char* kFiles[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                                  "/usr/share/fonts/truetype/freefont/FreeSerif.ttf",
                                  "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf",
                                  "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"};
// A list of this length contains successive characters from U+4E00.
constexpr std::size_t kGapless = 20000;

struct Subject {
  std::vector<std::uint8_t> image;
  TrueTypeFont* font = nullptr;

  explicit Subject(const char* file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    image.assign(bytes.begin(), bytes.end());
    font = open();
  }
  TrueTypeFont* open() const {
    TrueTypeFont* made = nullptr;
    openTrueTypeFont("f", image.data(), static_cast<std::int32_t>(image.size()), 0, &made);
    return made;
  }
  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;
  ~Subject() { closeTrueTypeFont(font); }
};
using Opened =
    std::unique_ptr<TrueTypeFont, decltype([](TrueTypeFont* font) { closeTrueTypeFont(font); })>;

// .notdef, and the first characters of the font that have different glyphs.
struct Chosen {
  std::vector<std::uint16_t> codes{0}, glyphs{0};

  Chosen(const TrueTypeFont& font, std::size_t count) {
    std::vector<bool> taken(font.numGlyphs);
    for (std::uint32_t code = count == kGapless ? 0x4E00 : 1; code < 0xFFFF; ++code) {
      if (codes.size() > count) return;
      const auto narrow = static_cast<std::uint16_t>(code);
      const std::uint16_t glyph = font.cmapLookup(font.cmapSubtable, narrow);
      if (glyph == 0 || glyph >= font.numGlyphs || taken[glyph]) continue;
      taken[glyph] = true;
      codes.push_back(narrow);
      glyphs.push_back(glyph);
    }
  }
};

// Returns false and sets an error for this run if the font is not installed.
bool ready(benchmark::State& state, const Subject*& subject, std::unique_ptr<Chosen>& chosen) {
  static std::unique_ptr<Subject> subjects[std::size(kFiles)];
  auto& kept = subjects[static_cast<std::size_t>(state.range(0))];
  const std::string file = kFiles[state.range(0)];
  state.SetLabel(file.substr(file.rfind('/') + 1));
  if (kept == nullptr) kept = std::make_unique<Subject>(file.c_str());
  if (kept->font == nullptr || kept->font->cmapLookup == nullptr) {
    state.SkipWithError("the font is not installed");
    return false;
  }
  chosen = std::make_unique<Chosen>(*kept->font, static_cast<std::size_t>(state.range(1)));
  state.counters["taken"] = static_cast<double>(chosen->codes.size());
  subject = kept.get();
  return true;
}

template <bool Opens>
void subsetUlmira(benchmark::State& state) {
  const Subject* subject;
  std::unique_ptr<Chosen> chosen;
  if (!ready(state, subject, chosen)) return;
  std::uint32_t length = 0;
  for (auto _ : state) {
    std::vector<std::uint16_t> glyphs = chosen->glyphs;  // the call replaces them
    std::uint8_t* image = nullptr;
    const Opened opened(Opens ? subject->open() : nullptr);
    if (createTrueTypeSubset(Opens ? opened.get() : subject->font, &image, &length, glyphs.data(),
                             chosen->codes.data(), static_cast<std::int32_t>(glyphs.size()), 0,
                             nullptr, SubsetGenericName | SubsetKeepOS2) != WriterResultOk) {
      return state.SkipWithError("refused");
    }
    benchmark::DoNotOptimize(image);
    std::free(image);
  }
  state.counters["bytes"] = length;
}

#ifdef ULM_BENCH_HARFBUZZ_SUBSET
struct Release {
  void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
  void operator()(hb_face_t* face) const { hb_face_destroy(face); }
  void operator()(hb_subset_input_t* input) const { hb_subset_input_destroy(input); }
};

template <bool Opens>
void subsetHarfBuzz(benchmark::State& state) {
  const Subject* subject;
  std::unique_ptr<Chosen> chosen;
  if (!ready(state, subject, chosen)) return;
  const std::unique_ptr<hb_blob_t, Release> source(hb_blob_create(
      reinterpret_cast<const char*>(subject->image.data()),
      static_cast<unsigned>(subject->image.size()), HB_MEMORY_MODE_READONLY, nullptr, nullptr));
  std::unique_ptr<hb_face_t, Release> face(hb_face_create(source.get(), 0));
  const std::unique_ptr<hb_subset_input_t, Release> input(hb_subset_input_create_or_fail());
  hb_subset_input_set_flags(
      input.get(), HB_SUBSET_FLAGS_NOTDEF_OUTLINE | HB_SUBSET_FLAGS_NO_PRUNE_UNICODE_RANGES);
  hb_set_t* names = hb_subset_input_set(input.get(), HB_SUBSET_SETS_NAME_ID);
  hb_set_clear(names);
  hb_set_add(names, 6);
  hb_set_t* dropped = hb_subset_input_set(input.get(), HB_SUBSET_SETS_DROP_TABLE_TAG);
  for (const char* tag : {"GSUB", "GPOS", "GDEF", "BASE", "JSTF", "MATH", "kern", "vhea", "vmtx",
                          "VORG", "gasp", "hdmx", "LTSH", "VDMX", "DSIG", "FFTM", "PCLT"}) {
    hb_set_add(dropped, HB_TAG(tag[0], tag[1], tag[2], tag[3]));
  }
  for (const std::uint16_t code : chosen->codes) {
    if (code != 0) hb_set_add(hb_subset_input_unicode_set(input.get()), code);
  }
  unsigned length = 0;
  for (auto _ : state) {
    if (Opens) face.reset(hb_face_create(source.get(), 0));
    const std::unique_ptr<hb_face_t, Release> made(hb_subset_or_fail(face.get(), input.get()));
    if (made == nullptr) return state.SkipWithError("refused");
    const std::unique_ptr<hb_blob_t, Release> file(hb_face_reference_blob(made.get()));
    benchmark::DoNotOptimize(hb_blob_get_data(file.get(), &length));
  }
  state.counters["bytes"] = length;
}
#endif

void addCases(benchmark::internal::Benchmark* bench) {
  for (int font = 0; font < static_cast<int>(std::size(kFiles)); ++font) {
    for (const int glyphs : {100, 1000, 5000}) {
      if (font == 2 && glyphs == 5000) continue;
      bench->Args({font, glyphs});
    }
  }
  bench->Args({3, kGapless});
}

#define ULM_BENCH_SUBSET(body, name) \
  BENCHMARK(body)->Name("subset/" name)->ArgNames({"", "glyphs"})->Apply(addCases)
ULM_BENCH_SUBSET(subsetUlmira<false>, "ulmira");
ULM_BENCH_SUBSET(subsetUlmira<true>, "opened/ulmira");
#ifdef ULM_BENCH_HARFBUZZ_SUBSET
ULM_BENCH_SUBSET(subsetHarfBuzz<false>, "harfbuzz");
ULM_BENCH_SUBSET(subsetHarfBuzz<true>, "opened/harfbuzz");
#endif

}  // namespace

BENCHMARK_MAIN();
