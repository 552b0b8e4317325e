// Subsets of real fonts, next to HarfBuzz's subsetter if it is available. Both keep the hints, the
// outline of .notdef and OS/2, and omit layout, kerning and glyph names; the names are the two
// fixed ones. The lists are made before the time is taken. "create" takes sources that are open,
// "open_create" opens them in the time; "fresh_open_create" does so with an image that has just
// been read into new memory, which the source has for that one subset. A font with fewer characters
// gives all of them.
#include <benchmark/benchmark.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>
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
    font = open(image.data());
  }
  // `bytes` is the image or a copy.
  TrueTypeFont* open(const std::uint8_t* bytes) const {
    TrueTypeFont* made = nullptr;
    openTrueTypeFont("f", bytes, static_cast<std::int32_t>(image.size()), 0, &made);
    return made;
  }
  Subject(const Subject&) = delete;
  Subject& operator=(const Subject&) = delete;
  ~Subject() { closeTrueTypeFont(font); }
};
using Opened =
    std::unique_ptr<TrueTypeFont, decltype([](TrueTypeFont* font) { closeTrueTypeFont(font); })>;

enum class Source { Open, Closed, Fresh };

// A copy of an image in pages that nothing has used before.
class FreshImage {
 public:
  explicit FreshImage(const std::vector<std::uint8_t>& image) : size_(image.size()) {
    void* room = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) throw std::bad_alloc();
    bytes_ = static_cast<std::uint8_t*>(room);
    std::copy(image.begin(), image.end(), bytes_);
  }
  FreshImage(const FreshImage&) = delete;
  FreshImage& operator=(const FreshImage&) = delete;
  ~FreshImage() { munmap(bytes_, size_); }
  const std::uint8_t* bytes() const { return bytes_; }

 private:
  std::size_t size_;
  std::uint8_t* bytes_;
};

// Makes a subset with every iteration: make(image), or, with the source open, make(null).
template <Source From, class Make>
void repeat(benchmark::State& state, const Subject& subject, Make make) {
  for (auto _ : state) {
    if constexpr (From == Source::Fresh) {
      state.PauseTiming();
      auto fresh = std::make_unique<FreshImage>(subject.image);
      state.ResumeTiming();
      make(fresh->bytes());
      state.PauseTiming();
      fresh = nullptr;
      state.ResumeTiming();
    } else {
      make(From == Source::Closed ? subject.image.data() : nullptr);
    }
  }
}

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

template <Source From>
void subsetUlmira(benchmark::State& state) {
  const Subject* subject;
  std::unique_ptr<Chosen> chosen;
  if (!ready(state, subject, chosen)) return;
  std::uint32_t length = 0, made = 0;
  repeat<From>(state, *subject, [&](const std::uint8_t* source) {
    std::vector<std::uint16_t> glyphs = chosen->glyphs;  // the call replaces them
    std::uint8_t* image = nullptr;
    const Opened opened(source != nullptr ? subject->open(source) : nullptr);
    if (createTrueTypeSubset(opened != nullptr ? opened.get() : subject->font, &image, &length,
                             glyphs.data(), chosen->codes.data(),
                             static_cast<std::int32_t>(glyphs.size()), 0, nullptr,
                             SubsetGenericName | SubsetKeepOS2) != WriterResultOk) {
      state.SkipWithError("refused");
    }
    benchmark::DoNotOptimize(image);
    std::free(image);
    made = glyphs.back() + 1u;
  });
  state.counters["work"] = made;  // glyphs, with the components of those that are listed
  state.counters["bytes"] = length;
}

#ifdef ULM_BENCH_HARFBUZZ_SUBSET
struct Release {
  void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
  void operator()(hb_face_t* face) const { hb_face_destroy(face); }
  void operator()(hb_subset_input_t* input) const { hb_subset_input_destroy(input); }
};

std::unique_ptr<hb_face_t, Release> faceOf(const std::uint8_t* image, std::size_t size) {
  const std::unique_ptr<hb_blob_t, Release> source(
      hb_blob_create(reinterpret_cast<const char*>(image), static_cast<unsigned>(size),
                     HB_MEMORY_MODE_READONLY, nullptr, nullptr));
  return std::unique_ptr<hb_face_t, Release>(hb_face_create(source.get(), 0));
}

template <Source From>
void subsetHarfBuzz(benchmark::State& state) {
  const Subject* subject;
  std::unique_ptr<Chosen> chosen;
  if (!ready(state, subject, chosen)) return;
  const std::size_t size = subject->image.size();
  std::unique_ptr<hb_face_t, Release> face = faceOf(subject->image.data(), size);
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
  repeat<From>(state, *subject, [&](const std::uint8_t* source) {
    if (source != nullptr) face = faceOf(source, size);
    const std::unique_ptr<hb_face_t, Release> made(hb_subset_or_fail(face.get(), input.get()));
    if (made == nullptr) return state.SkipWithError("refused");
    const std::unique_ptr<hb_blob_t, Release> file(hb_face_reference_blob(made.get()));
    benchmark::DoNotOptimize(hb_blob_get_data(file.get(), &length));
  });
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
  BENCHMARK(body)->Name("subset/" name)->ArgNames({"font", "glyphs"})->Apply(addCases)
ULM_BENCH_SUBSET(subsetUlmira<Source::Open>, "create/ulmira");
ULM_BENCH_SUBSET(subsetUlmira<Source::Closed>, "open_create/ulmira");
ULM_BENCH_SUBSET(subsetUlmira<Source::Fresh>, "fresh_open_create/ulmira");
#ifdef ULM_BENCH_HARFBUZZ_SUBSET
ULM_BENCH_SUBSET(subsetHarfBuzz<Source::Open>, "create/harfbuzz");
ULM_BENCH_SUBSET(subsetHarfBuzz<Source::Closed>, "open_create/harfbuzz");
ULM_BENCH_SUBSET(subsetHarfBuzz<Source::Fresh>, "fresh_open_create/harfbuzz");
#endif

}  // namespace

BENCHMARK_MAIN();
