// Both hashes next to OpenSSL's SHA-1. Each time is of a whole message, from a new object to the
// digest. The digest is compared before it is timed.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "bignum/digest/digest.h"
#ifdef ULM_BENCH_OPENSSL
#define OPENSSL_SUPPRESS_DEPRECATED  // the deprecated calls do not search for an implementation
#include <openssl/evp.h>
#include <openssl/sha.h>
#endif

namespace {

using ulm::bignum::QLSHA;
using Digest = std::array<std::uint8_t, 20>;
using Bytes = std::vector<std::uint8_t>;
using Hash = void (*)(const Bytes& message, Digest& digest);

template <bool Rotate>
void byUlmira(const Bytes& message, Digest& digest) {
  QLSHA sha(Rotate);
  sha.Update(message.data(), static_cast<std::uint32_t>(message.size()));
  sha.Final(digest.data());
}

#ifdef ULM_BENCH_OPENSSL
void byOpenSsl(const Bytes& message, Digest& digest) {
  SHA_CTX context;
  SHA1_Init(&context);
  SHA1_Update(&context, message.data(), message.size());
  SHA1_Final(digest.data(), &context);
}

void byOpenSslEvp(const Bytes& message, Digest& digest) {
  EVP_Digest(message.data(), message.size(), digest.data(), nullptr, EVP_sha1(), nullptr);
}
#endif

void add(const char* name, Hash hash, Hash reference) {
  const auto run = [=](benchmark::State& state) {
    const Bytes message(static_cast<std::size_t>(state.range(0)), 0xA5);
    Digest digest{}, expected{};
    hash(message, digest);
    reference(message, expected);
    if (digest != expected) return state.SkipWithError("digests differ");
    for (auto _ : state) {
      hash(message, digest);
      benchmark::DoNotOptimize(digest);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
  };
  benchmark::RegisterBenchmark(name, run)
      ->ArgName("bytes")
      ->Arg(16)
      ->Arg(64)
      ->Arg(256)
      ->Arg(1024)
      ->Arg(16 << 10)
      ->Arg(1 << 20);
}

}  // namespace

int main(int argc, char** argv) {
  add("digest/sha1/ulmira", byUlmira<true>, byUlmira<true>);
#ifdef ULM_BENCH_OPENSSL
  add("digest/sha1/openssl", byOpenSsl, byUlmira<true>);
  add("digest/sha1/openssl_evp", byOpenSslEvp, byUlmira<true>);
#endif
  add("digest/sha0/ulmira", byUlmira<false>, byUlmira<false>);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
