// Both hashes, in slices of any lengths, held to OpenSSL, to a model and to one call. An input is
// the choice of the hash, then slices: a byte of length, which also repeats the bytes so that long
// messages come from short inputs, and the bytes.
#include <array>
#include <vector>

#include "bignum/digest/digest.h"
#include "fuzz/input.h"
#include "tests/bignum/digest/sha_model.h"

#ifdef ULM_FUZZ_WITH_OPENSSL
#include <openssl/evp.h>
#endif

using namespace ulm::bignum;
using namespace ulm::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1 || size > 4096) return 0;
  Input input(data, size);
  const bool rotate = (input.u8() & 1) != 0;
  QLSHA sliced(rotate);
  std::vector<std::uint8_t> message;
  while (!input.isEmpty() && message.size() < 65536) {
    const std::uint8_t control = input.u8();
    const Bytes bytes = input.take(control & 63);
    std::vector<std::uint8_t> slice;
    for (int copies = 1 << (control >> 6); copies > 0; --copies) {
      slice.insert(slice.end(), bytes.begin(), bytes.end());
    }
    sliced.Update(slice.data(), static_cast<std::uint32_t>(slice.size()));
    message.insert(message.end(), slice.begin(), slice.end());
    require(sliced.blockFill == message.size() % 64, "the bytes that wait");
  }
  std::array<std::uint8_t, 20> digest{}, whole{};
  sliced.Final(digest.data());
  QLSHA once(rotate);
  once.Digest(message.data(), static_cast<std::uint32_t>(message.size()), whole.data());
  require(digest == whole, "slices make no difference");
  sliced.Restart();
  sliced.Digest(message.data(), static_cast<std::uint32_t>(message.size()), whole.data());
  require(digest == whole, "a restarted object is as a fresh one");
  const std::vector<std::uint8_t> model = test::modelDigest(message, rotate);
  require(std::equal(model.begin(), model.end(), digest.begin(), digest.end()),
          "the model's digest");
#ifdef ULM_FUZZ_WITH_OPENSSL
  if (rotate) {
    unsigned length = 0;
    std::array<std::uint8_t, EVP_MAX_MD_SIZE> peer{};
    EVP_Digest(message.data(), message.size(), peer.data(), &length, EVP_sha1(), nullptr);
    require(length == 20 && std::equal(digest.begin(), digest.end(), peer.begin()),
            "the digest is the peer's");
  }
#endif
  return 0;
}
