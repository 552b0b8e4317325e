#include "bignum/digest/digest.h"

namespace ulm::bignum {

QLMessageDigest::~QLMessageDigest() = default;

void QLMessageDigest::Digest(const std::uint8_t* bytes, std::uint32_t length,
                             std::uint8_t* digest) {
  Update(bytes, length);
  Final(digest);
}

}  // namespace ulm::bignum
