#include "bignum/rsa/crypter.h"

namespace ulm::bignum {

QLCrypter::~QLCrypter() = default;
QLDecryptor::~QLDecryptor() = default;
QLTrapdoorFunction::~QLTrapdoorFunction() = default;

QLInteger QLTrapdoorFunction::MaxInput() const { return InputBound() - 1; }
QLInteger QLTrapdoorFunction::MaxOutput() const { return OutputBound() - 1; }

}  // namespace ulm::bignum
