// The big integers next to other libraries. All get the same operands. The result of an operation
// is compared with that of this library before it is timed.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"
#ifdef ULM_BENCH_GMP
#include <gmp.h>
#endif
#ifdef ULM_BENCH_OPENSSL
#include <openssl/bn.h>
#include <openssl/crypto.h>
#endif
#ifdef ULM_BENCH_TOMMATH
#include <tommath.h>
#endif

namespace {

using ulm::bignum::QLInteger;

// One interface to each library. Numbers are passed as hexadecimal digits. All results go to
// numbers that are there and have their storage, except those of freshProduct: it makes a number,
// and the old one is freed.
struct Ulmira {
  struct Number {
    QLInteger value;
    explicit Number(const std::string& hex = "0")
        : value(ulm::bignum::parseInteger((hex + 'h').c_str())) {}
    std::string hex() const {
      std::string text = toString(value, 16);
      text.pop_back();
      return text;
    }
  };
  static void multiply(Number& out, const Number& a, const Number& b) {
    out.value.Assign(a.value);
    out.value *= b.value;
  }
  static void square(Number& out, const Number& a) {
    out.value.Assign(a.value);
    out.value *= out.value;
  }
  static void freshProduct(Number& out, const Number& a, const Number& b) {
    QLInteger product = a.value * b.value;
    out.value.Swap(product);
  }
  static void divide(Number& quotient, Number& rest, const Number& a, const Number& b) {
    Divide(a.value, b.value, quotient.value, rest.value);
  }
  static void modPow(Number& out, const Number& a, const Number& e, const Number& m) {
    ModPow(a.value, e.value, m.value, out.value);
  }
  static void gcd(Number& out, const Number& a, const Number& b) {
    Gcd(a.value, b.value, out.value);
  }
  static void extendedGcd(Number& g, Number& x, const Number& a, const Number& b) {
    static QLInteger y;
    ExtendedGcd(a.value, b.value, g.value, x.value, y);
  }
  static void write(std::string& text, const Number& a, int radix) {
    text.resize(a.value.BitLength() + 5);
    text.resize(ToText(a.value, text.data(), static_cast<std::uint32_t>(text.size()),
                       static_cast<std::uint32_t>(radix)) -
                1);
  }
  static void read(Number& out, const std::string& text, int) { FromText(out.value, text.c_str()); }
  static bool passesFive(const Number& a) { return IsProbablePrime(a.value, 5, 5); }
  static void nextPrime(Number& out, const Number& a) { NextPrime(a.value, out.value); }
};

#ifdef ULM_BENCH_GMP
struct Gmp {
  struct Number {
    mpz_t value;
    explicit Number(const std::string& hex = "0") { mpz_init_set_str(value, hex.c_str(), 16); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() { mpz_clear(value); }
    std::string hex() const {
      std::string text(mpz_sizeinbase(value, 16) + 2, '\0');
      mpz_get_str(text.data(), -16, value);
      return text.c_str();
    }
  };
  static void multiply(Number& out, const Number& a, const Number& b) {
    mpz_mul(out.value, a.value, b.value);
  }
  static void freshProduct(Number& out, const Number& a, const Number& b) {
    mpz_t product;
    mpz_init(product);
    mpz_mul(product, a.value, b.value);
    mpz_swap(out.value, product);
    mpz_clear(product);
  }
  static void divide(Number& quotient, Number& rest, const Number& a, const Number& b) {
    mpz_tdiv_qr(quotient.value, rest.value, a.value, b.value);
  }
  static void modPow(Number& out, const Number& a, const Number& e, const Number& m) {
    mpz_powm(out.value, a.value, e.value, m.value);
  }
  static void gcd(Number& out, const Number& a, const Number& b) {
    mpz_gcd(out.value, a.value, b.value);
  }
  static void extendedGcd(Number& g, Number& x, const Number& a, const Number& b) {
    static Number y;
    mpz_gcdext(g.value, x.value, y.value, a.value, b.value);
  }
  static void write(std::string& text, const Number& a, int radix) {
    text.resize(mpz_sizeinbase(a.value, radix) + 2);
    mpz_get_str(text.data(), -radix, a.value);
    text.resize(std::strlen(text.c_str()));
  }
  static void read(Number& out, const std::string& text, int radix) {
    mpz_set_str(out.value, text.c_str(), radix);
  }
  static bool passesFive(const Number& a) {  // as many powers, without the steps between them
    static Number power, base, exponent;
    mpz_sub_ui(exponent.value, a.value, 1);
    bool passes = true;
    for (const unsigned prime : {2u, 3u, 5u, 7u, 11u}) {
      mpz_set_ui(base.value, prime);
      mpz_powm(power.value, base.value, exponent.value, a.value);
      passes = passes && mpz_cmp_ui(power.value, 1) == 0;
    }
    return passes;
  }
  static void nextPrime(Number& out, const Number& a) {
    mpz_sub_ui(out.value, a.value, 1);
    mpz_nextprime(out.value, out.value);
  }
};
#endif

#ifdef ULM_BENCH_OPENSSL
struct OpenSsl {
  struct Number {
    BIGNUM* value = BN_new();
    explicit Number(const std::string& hex = "0") { BN_hex2bn(&value, hex.c_str()); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() { BN_free(value); }
    std::string hex() const {
      char* text = BN_bn2hex(value);
      std::string copy(text);
      OPENSSL_free(text);
      const auto first = copy.find_first_not_of('0');  // OpenSSL prints an even number of digits
      return first == std::string::npos ? "0" : copy.substr(first);
    }
  };
  static BN_CTX* context() {
    static BN_CTX* const made = BN_CTX_new();
    return made;
  }
  static void multiply(Number& out, const Number& a, const Number& b) {
    BN_mul(out.value, a.value, b.value, context());
  }
  static void freshProduct(Number& out, const Number& a, const Number& b) {
    BIGNUM* const product = BN_new();
    BN_mul(product, a.value, b.value, context());
    BN_free(out.value);
    out.value = product;
  }
  static void divide(Number& quotient, Number& rest, const Number& a, const Number& b) {
    BN_div(quotient.value, rest.value, a.value, b.value, context());
  }
  static void modPow(Number& out, const Number& a, const Number& e, const Number& m) {
    BN_mod_exp(out.value, a.value, e.value, m.value, context());
  }
  static void gcd(Number& out, const Number& a, const Number& b) {
    BN_gcd(out.value, a.value, b.value, context());
  }
  static void write(std::string& text, const Number& a, int radix) {
    char* made = radix == 10 ? BN_bn2dec(a.value) : BN_bn2hex(a.value);
    text = made;
    OPENSSL_free(made);
  }
  static void read(Number& out, const std::string& text, int radix) {
    if (radix == 10) {
      BN_dec2bn(&out.value, text.c_str());
    } else {
      BN_hex2bn(&out.value, text.c_str());
    }
  }
};
#endif

#ifdef ULM_BENCH_TOMMATH
struct TomMath {
  struct Number {
    mp_int value;
    // By bytes: its own conversions take time that grows with the square.
    explicit Number(const std::string& hex = "0") {
      std::string bytes;
      for (std::size_t i = 0; i < hex.size(); i += 2 - (hex.size() - i) % 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2 - (hex.size() - i) % 2), nullptr, 16));
      }
      need(mp_init(&value));
      need(
          mp_from_ubin(&value, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
    }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() { mp_clear(&value); }
    static void need(mp_err result) {
      if (result != MP_OKAY) std::abort();
    }
    std::string hex() const {
      std::vector<unsigned char> bytes(mp_ubin_size(&value));
      std::size_t written = 0;
      need(mp_to_ubin(&value, bytes.data(), bytes.size(), &written));
      std::string text;
      for (const unsigned char byte : bytes) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 15];
      }
      const auto first = text.find_first_not_of('0');
      return first == std::string::npos ? "0" : text.substr(first);
    }
  };
  static constexpr bool kSlowTexts = true;  // minutes for a million bits
  static void need(mp_err result) { Number::need(result); }
  static void multiply(Number& out, const Number& a, const Number& b) {
    need(mp_mul(&a.value, &b.value, &out.value));
  }
  static void freshProduct(Number& out, const Number& a, const Number& b) {
    mp_int product;
    need(mp_init(&product));
    need(mp_mul(&a.value, &b.value, &product));
    mp_exch(&out.value, &product);
    mp_clear(&product);
  }
  static void divide(Number& quotient, Number& rest, const Number& a, const Number& b) {
    need(mp_div(&a.value, &b.value, &quotient.value, &rest.value));
  }
  static void modPow(Number& out, const Number& a, const Number& e, const Number& m) {
    need(mp_exptmod(&a.value, &e.value, &m.value, &out.value));
  }
  static void gcd(Number& out, const Number& a, const Number& b) {
    need(mp_gcd(&a.value, &b.value, &out.value));
  }
  static void write(std::string& text, const Number& a, int radix) {
    text.resize(static_cast<std::size_t>(mp_count_bits(&a.value)) / 3 + 4);
    std::size_t written = 0;
    need(mp_to_radix(&a.value, text.data(), text.size(), &written, radix));
    text.resize(written - 1);
  }
  static void read(Number& out, const std::string& text, int radix) {
    need(mp_read_radix(&out.value, text.c_str(), radix));
  }
};
#endif

// Returns the hexadecimal digits of an odd number of exactly `bits` bits, a multiple of 4.
std::string digits(std::int64_t bits, std::uint64_t seed) {
  std::string text;
  for (std::int64_t i = 0; i < bits / 4; ++i) {
    seed = seed * 6364136223846793005u + 1442695040888963407u;
    text += "0123456789ABCDEF"[seed >> 60];
  }
  text.front() = 'D';
  text.back() = '5';
  return text;
}

// Times an operation. Its run<Library> makes operands of a size and passes a function to its last
// argument; that function performs the operation once and stores the two results.
template <class Library, class Operation>
void time(benchmark::State& state, Operation operation) {
  typename Ulmira::Number expected, expectedToo;
  operation.template run<Ulmira>(state.range(0), expected, expectedToo, [](auto once) { once(); });
  typename Library::Number result, resultToo;
  operation.template run<Library>(state.range(0), result, resultToo, [&](auto once) {
    once();
    if (result.hex() != expected.hex() || resultToo.hex() != expectedToo.hex()) {
      state.SkipWithError("results differ");
      return;
    }
    for (auto _ : state) {
      once();
      benchmark::ClobberMemory();
    }
  });
}

struct Multiply {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits, 1)), b(digits(bits, 2));
    measure([&] { Library::multiply(out, a, b); });
  }
};

struct Square {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits, 1));
    measure([&] {
      if constexpr (requires { Library::square(out, a); }) {
        Library::square(out, a);
      } else {
        Library::multiply(out, a, a);
      }
    });
  }
};

struct FreshMultiply {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits, 1)), b(digits(bits, 2));
    measure([&] { Library::freshProduct(out, a, b); });
  }
};

struct FreshSquare {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits, 1));
    measure([&] { Library::freshProduct(out, a, a); });
  }
};

struct Divide2nByN {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out& outToo, Measure measure) {
    const Out a(digits(2 * bits, 1)), b(digits(bits, 2));
    measure([&] { Library::divide(out, outToo, a, b); });
  }
};

struct PublicPower {  // a short exponent, so that a run takes a reasonable time with every kernel
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits - 4, 1)), e("10001"), m(digits(bits, 2));
    measure([&] { Library::modPow(out, a, e, m); });
  }
};

struct Divisor {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits, 1)), b(digits(bits, 2));
    measure([&] { Library::gcd(out, a, b); });
  }
};

struct FullPower {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits - 4, 1)), e(digits(bits, 3)), m(digits(bits, 2));
    measure([&] { Library::modPow(out, a, e, m); });
  }
};

struct Extended {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out& outToo, Measure measure) {
    const Out a(digits(bits, 1)), b(digits(bits, 2));
    measure([&] { Library::extendedGcd(out, outToo, a, b); });
  }
};

struct Write {
  int radix;
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits, 1));
    std::string text;
    Library::write(text, a, radix);
    Library::read(out, text, radix);  // what is compared
    measure([&] { Library::write(text, a, radix); });
  }
};

struct Read {
  int radix;
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits, 1));
    std::string text;
    Library::write(text, a, radix);
    measure([&] { Library::read(out, text, radix); });
  }
};

struct FivePowers {  // of a prime
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out& outToo, Measure measure) {
    Ulmira::Number prime;
    Ulmira::nextPrime(prime, Ulmira::Number(digits(bits, 1)));
    const Out a(prime.hex());
    bool passes = Library::passesFive(a);
    Library::multiply(out, passes ? a : outToo, a);  // what is compared
    measure([&] { benchmark::DoNotOptimize(passes = Library::passesFive(a)); });
  }
};

struct Search {
  template <class Library, class Out, class Measure>
  void run(std::int64_t bits, Out& out, Out&, Measure measure) {
    const Out a(digits(bits, 1));
    measure([&] { Library::nextPrime(out, a); });
  }
};

template <class Library>
void addLibrary(const std::string& name) {
  const auto add = [&name](const std::string& what, std::initializer_list<std::int64_t> more,
                           auto operation) {
    auto* const made = benchmark::RegisterBenchmark(
        ("bignum/" + what + '/' + name).c_str(),
        [operation](benchmark::State& state) { time<Library>(state, operation); });
    made->ArgName("bits");
    for (const std::int64_t bits : {32, 128, 256, 512, 1024, 2048, 4096}) made->Arg(bits);
    for (const std::int64_t bits : more) made->Arg(bits);
  };
  add("multiply", {16384, 1000000}, Multiply());
  add("square", {16384, 1000000}, Square());
  add("freshmultiply", {16384, 1000000}, FreshMultiply());
  add("freshsquare", {16384, 1000000}, FreshSquare());
  add("divide", {16384, 1000000}, Divide2nByN());
  add("modpow", {}, PublicPower());
  add("fullpow", {}, FullPower());
  add("gcd", {16384}, Divisor());
  if constexpr (requires { Library::kSlowTexts; }) {
    add("write10", {16384}, Write{10});
    add("read10", {16384}, Read{10});
  } else {
    add("write10", {16384, 1000000}, Write{10});
    add("read10", {16384, 1000000}, Read{10});
  }
  add("write16", {16384}, Write{16});
  add("read16", {16384}, Read{16});
  if constexpr (requires(typename Library::Number & n) { Library::nextPrime(n, n); }) {
    add("egcd", {16384}, Extended());
    add("fivepowers", {}, FivePowers());
    add("nextprime", {}, Search());
  }
}

}  // namespace

int main(int argc, char** argv) {
  addLibrary<Ulmira>("ulmira");
#ifdef ULM_BENCH_GMP
  addLibrary<Gmp>("gmp");
#endif
#ifdef ULM_BENCH_OPENSSL
  addLibrary<OpenSsl>("openssl");
#endif
#ifdef ULM_BENCH_TOMMATH
  addLibrary<TomMath>("tommath");
#endif
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
