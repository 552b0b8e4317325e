// The big integers next to other libraries. All get the same operands. The result of an operation
// is compared with that of this library before it is timed.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <string>

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

// One interface to each library. Numbers are passed as hexadecimal digits.
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
  static void divide(Number& quotient, Number& rest, const Number& a, const Number& b) {
    mpz_tdiv_qr(quotient.value, rest.value, a.value, b.value);
  }
  static void modPow(Number& out, const Number& a, const Number& e, const Number& m) {
    mpz_powm(out.value, a.value, e.value, m.value);
  }
  static void gcd(Number& out, const Number& a, const Number& b) {
    mpz_gcd(out.value, a.value, b.value);
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
  static void divide(Number& quotient, Number& rest, const Number& a, const Number& b) {
    BN_div(quotient.value, rest.value, a.value, b.value, context());
  }
  static void modPow(Number& out, const Number& a, const Number& e, const Number& m) {
    BN_mod_exp(out.value, a.value, e.value, m.value, context());
  }
  static void gcd(Number& out, const Number& a, const Number& b) {
    BN_gcd(out.value, a.value, b.value, context());
  }
};
#endif

#ifdef ULM_BENCH_TOMMATH
struct TomMath {
  struct Number {
    mp_int value;
    explicit Number(const std::string& hex = "0") {
      if (mp_init(&value) != MP_OKAY || mp_read_radix(&value, hex.c_str(), 16) != MP_OKAY) {
        std::abort();
      }
    }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() { mp_clear(&value); }
    std::string hex() const {
      std::string text(static_cast<std::size_t>(mp_count_bits(&value)) / 4 + 4, '\0');
      if (mp_to_radix(&value, text.data(), text.size(), nullptr, 16) != MP_OKAY) std::abort();
      return text.c_str();
    }
  };
  static void need(mp_err result) {
    if (result != MP_OKAY) std::abort();
  }
  static void multiply(Number& out, const Number& a, const Number& b) {
    need(mp_mul(&a.value, &b.value, &out.value));
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

template <class Library>
void addLibrary(const std::string& name) {
  const auto add = [&name](const std::string& what, auto operation) {
    benchmark::RegisterBenchmark(
        ("bignum/" + what + '/' + name).c_str(),
        [operation](benchmark::State& state) { time<Library>(state, operation); })
        ->ArgName("bits")
        ->Arg(32)
        ->Arg(128)
        ->Arg(512)
        ->Arg(1024)
        ->Arg(2048)
        ->Arg(4096)
        ->Arg(16384);
  };
  add("multiply", Multiply());
  add("divide", Divide2nByN());
  add("modpow", PublicPower());
  add("gcd", Divisor());
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
