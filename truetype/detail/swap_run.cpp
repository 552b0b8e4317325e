#include "truetype/detail/swap_run.h"

#include "truetype/format/big_endian.h"

// Not in a build for Windows without optimisation, where vectors go over a stack that is not
// aligned for them.
#if defined(__x86_64__) && defined(__GNUC__) && (defined(__OPTIMIZE__) || !defined(_WIN32))
#define ULM_SWAP_BY_SHUFFLE
#include <cpuid.h>
#include <immintrin.h>

#include <atomic>
#endif

namespace ulm::truetype::detail {
namespace {

constexpr std::size_t k16 = sizeof(std::uint16_t), k32 = sizeof(std::uint32_t);

// Number `index` of a run.
template <class T>
T at(const std::uint8_t* bytes, std::size_t index) noexcept {
  return format::loadBigEndian<T>(bytes + index * sizeof(T));
}

#ifdef ULM_SWAP_BY_SHUFFLE

constexpr std::size_t kLanes = 8;  // numbers in a vector

[[gnu::target("avx2")]] __m256i swapped32(const std::uint8_t* bytes) noexcept {
  const __m256i order = _mm256_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12,  //
                                         3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12);
  return _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes)), order);
}

// All three return how many numbers they have dealt with, a multiple of the vector's.
[[gnu::target("avx2")]] std::size_t shuffle32(const std::uint8_t* bytes, std::size_t count,
                                              std::uint32_t* out) noexcept {
  std::size_t done = 0;
  for (; count - done >= kLanes; done += kLanes) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + done), swapped32(bytes + done * k32));
  }
  return done;
}

[[gnu::target("avx2")]] std::size_t addUp32(const std::uint8_t* bytes, std::size_t count,
                                            std::uint32_t* sum) noexcept {
  __m256i even = _mm256_setzero_si256(), odd = even;
  std::size_t done = 0;
  for (; count - done >= 2 * kLanes; done += 2 * kLanes) {
    even = _mm256_add_epi32(even, swapped32(bytes + done * k32));
    odd = _mm256_add_epi32(odd, swapped32(bytes + (done + kLanes) * k32));
  }
  std::uint32_t lanes[kLanes];
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(lanes), _mm256_add_epi32(even, odd));
  for (const std::uint32_t lane : lanes) *sum += lane;
  return done;
}

[[gnu::target("avx2")]] std::size_t shuffle16(const std::uint8_t* bytes, std::size_t count,
                                              std::uint32_t* out) noexcept {
  const __m256i order = _mm256_setr_epi8(1, 0, 2, 3, 5, 4, 6, 7, 9, 8, 10, 11, 13, 12, 14, 15,  //
                                         1, 0, 2, 3, 5, 4, 6, 7, 9, 8, 10, 11, 13, 12, 14, 15);
  std::size_t done = 0;
  for (; count - done >= kLanes; done += kLanes) {
    const auto* from = reinterpret_cast<const __m128i*>(bytes + done * k16);
    const __m256i number = _mm256_shuffle_epi8(_mm256_cvtepu16_epi32(_mm_loadu_si128(from)), order);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + done), _mm256_slli_epi32(number, 1));
  }
  return done;
}

// Whether the processor has AVX2 and the system keeps its registers.
bool findAvx2() noexcept {
  constexpr unsigned kAvxWithXsave = 3u << 27, kAvx2 = 1u << 5, kVectors = 6;
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & kAvxWithXsave) != kAvxWithXsave) return false;
  unsigned kept = 0;
  __asm__("xgetbv" : "=a"(kept), "=d"(d) : "c"(0));
  if ((kept & kVectors) != kVectors) return false;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & kAvx2) != 0;
}

// Found out with the first run. The compiler's own test would ask for all features of the processor
// whenever a library that holds this file is loaded, which takes long in a virtual machine.
enum class Shuffle : std::uint8_t { Unknown, No, Yes };
constinit std::atomic<Shuffle> shuffle{Shuffle::Unknown};

bool canShuffle() noexcept {
  Shuffle found = shuffle.load(std::memory_order_relaxed);
  if (found == Shuffle::Unknown) {
    found = findAvx2() ? Shuffle::Yes : Shuffle::No;
    shuffle.store(found, std::memory_order_relaxed);
  }
  return found == Shuffle::Yes;
}

#else

std::size_t shuffle32(const std::uint8_t*, std::size_t, std::uint32_t*) noexcept { return 0; }
std::size_t shuffle16(const std::uint8_t*, std::size_t, std::uint32_t*) noexcept { return 0; }
std::size_t addUp32(const std::uint8_t*, std::size_t, std::uint32_t*) noexcept { return 0; }
bool canShuffle() noexcept { return false; }

#endif

}  // namespace

bool storeRun32(format::ByteView bytes, std::size_t count, std::uint32_t* out) noexcept {
  if (count > bytes.size() / k32) return false;
  const std::uint8_t* start = bytes.start();
  for (std::size_t i = canShuffle() ? shuffle32(start, count, out) : 0; i < count; ++i) {
    out[i] = at<std::uint32_t>(start, i);
  }
  return true;
}

bool storeDoubledRun16(format::ByteView bytes, std::size_t count, std::uint32_t* out) noexcept {
  if (count > bytes.size() / k16) return false;
  const std::uint8_t* start = bytes.start();
  for (std::size_t i = canShuffle() ? shuffle16(start, count, out) : 0; i < count; ++i) {
    out[i] = 2u * at<std::uint16_t>(start, i);
  }
  return true;
}

std::uint32_t sumRun32(format::ByteView bytes) noexcept {
  const std::uint8_t* start = bytes.start();
  const std::size_t count = bytes.size() / k32;
  std::uint32_t sum = 0;
  for (std::size_t i = canShuffle() ? addUp32(start, count, &sum) : 0; i < count; ++i) {
    sum += at<std::uint32_t>(start, i);
  }
  return sum;
}

}  // namespace ulm::truetype::detail
