// Big integers: reads a number from text, finds the first prime above it, and encrypts and decrypts
// a message with the exponents of a key pair.
#include <iostream>

#include "bignum/bytes.h"
#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"

int main() {
  using namespace ulm::bignum;

  QLInteger p, q;
  NextPrime(parseInteger("0x1000000000000000000000001"), p);
  NextPrime(p + PowerOfTwo(90), q);
  std::cout << "p = " << p << "\nq = " << q << '\n';

  const QLInteger modulus = p * q;
  const QLInteger phi = (p - 1) * (q - 1);
  const QLInteger exponent = 65537;

  // exponent * inverse + phi * unused = 1; the inverse may be negative.
  QLInteger divisor, inverse, unused;
  ExtendedGcd(exponent, phi, divisor, inverse, unused);
  if (divisor != 1) return 1;
  if (inverse < 0) inverse += phi;

  const QLInteger message = parseInteger("48656C6C6Fh");
  QLInteger sealed, opened;
  ModPow(message, exponent, modulus, sealed);
  ModPow(sealed, inverse, modulus, opened);
  std::cout << "sealed = " << toString(sealed, 16) << '\n' << "opened = ";
  for (const std::uint8_t byte : bytesHighFirst(opened)) std::cout << static_cast<char>(byte);
  std::cout << '\n';
  return opened == message ? 0 : 1;
}
