// `ulmira digest` and `ulmira rsa` as a user calls them: what they print, on both streams, and the
// exit code.
#include <gtest/gtest.h>

#include <string>

#include "tools/support/process.h"

namespace {

struct Row {
  const char *lines, *output;  // shell lines with the command as $U; what has no end is looked for
  int status = 0;
};

void expectRows(const Row* first, const Row* last) {
  const std::string command = (ulm::tools::programFolder() / "ulmira").string();
  for (; first != last; ++first) {
    const std::string lines =
        "f=$(mktemp -d) && cd $f && trap 'rm -r $f' EXIT\nprintf abc >abc\nU=" + command + "\n{ " +
        first->lines + "\n} 2>&1";
    const auto result = ulm::tools::runProcess("/bin/sh", {"-c", lines});
    const std::string wanted = first->output;
    const bool whole = wanted.empty() || wanted.back() == '\n';
    EXPECT_TRUE(whole ? result.output == wanted : result.output.find(wanted) != std::string::npos)
        << first->lines << '\n'
        << result.output;
    EXPECT_EQ(result.exitCode, first->status) << first->lines;
  }
}

#define ABC "a9993e364706816aba3e25717850c26c9cd0d89d"

TEST(DigestCommand, WritesAndChecks) {
  const Row rows[] = {
      {"$U digest sha1 <abc", ABC "  -\n"},
      {"$U digest sha0 abc", "0164b8a914cd2a5e74c4f7ff082c4d97f1edf880  abc\n"},
      // Names that would break a line, against the program whose form it is; and several blocks.
      {"n=$(printf 'a\\\\b\\nc'); r=$(printf 'x\\ry'); head -c 3000000 /dev/zero >\"$n\"; >\"$r\"\n"
       "$U digest sha1 \"$n\" >own; sha1sum \"$n\" | cmp - own && sha1sum --check --status own\n"
       "$U digest sha1 \"$r\" >>own; $U digest sha1 --check own",
       "\\a\\\\b\\nc: OK\n\\x\\ry: OK\n"},
      {"printf 'A9993E364706816ABA3E25717850C26C9CD0D89D *abc\\r\\n\\n# b\\n' | $U digest sha1 -c",
       "abc: OK\n"},
      {"$U digest sha1 abc >l; echo >abc; $U digest sha1 -c l",
       "abc: FAILED\nulmira digest: WARNING: 1 computed checksum did NOT match\n", 1},
      {"echo '" ABC "  gone' | $U digest sha1 -c", "gone: FAILED open or read", 1},
      {"printf 'junk\\n" ABC "_ abc\\n' | $U digest sha1 -c",
       "ulmira digest: standard input: no properly formatted checksum lines found\n", 1},
      {"$U digest sha1 gone . abc",
       "ulmira digest: gone: No such file or directory\nulmira digest: .: Is a directory\n" ABC
       "  abc\n",
       1},
      {"$U digest sha1 abc >/dev/full", "could not be written", 1},
      {"$U digest md5 abc", "md5", 2},
      // A terminal is told how far a large file is.
      {"truncate -s 40M l; script -qec \"$U digest sha1 l\" /dev/null </dev/null", "l: 2 %"},
      {"truncate -s 40M l; $U digest sha1 l", "c312da918d0163b8301c70a121b8b0fbd50bc601  l\n"}};
  expectRows(std::begin(rows), std::end(rows));
}

TEST(RsaCommand, AppliesAndDecrypts) {
  const Row rows[] = {
      {"printf '\\346\\012' | $U rsa decrypt --modulus 3233 --exponent 2753", "41\n"},
      {"echo 41 00 | $U rsa apply --hex-in --modulus 3233 --exponent 17", "E60A\n"},
      {"echo e60a | $U rsa apply --hex-in --modulus 3233 --exponent 2753", "4100\n"},
      {"echo 0AE6 >b; for o in apply decrypt; do\n"
       "$U rsa $o b --big-endian --hex-in --modulus 3233 --exponent 2753; done",
       "0041\n41\n"},
      {"echo ' 0xCA1' >n; echo 2753 >e; printf '\\346\\012' >b\n"
       "$U rsa decrypt b --raw-out --modulus @n --exponent @e; echo",
       "A\n"},
      {"echo 0000 | $U rsa decrypt --hex-in --modulus 3233 --exponent 17", "\n"},
      {"printf a | $U rsa apply --modulus 3233 --exponent 17",
       "ulmira rsa: standard input: a block of this modulus has 2 bytes, and this one has 1\n", 1},
      {"$U rsa apply abc --modulus 3233 --exponent 17", "this one has more", 1},
      {"echo 0000 0 | $U rsa decrypt --hex-in --modulus 3233 --exponent 17", "this one has more",
       1},
      {"echo 000 | $U rsa decrypt --hex-in --modulus 3233 --exponent 17", "an odd number", 1},
      {"echo 0g | $U rsa apply --hex-in --modulus 33 --exponent 3", "not a hexadecimal digit", 1},
      {"$U rsa apply gone --modulus 33 --exponent 3", "gone: No such file or directory", 1},
      {"$U rsa apply . --modulus 33 --exponent 3", ".: Is a directory", 1},
      {"$U rsa apply --modulus @gone --exponent 3", "gone: No such file or directory", 1},
      {"$U rsa apply --modulus @. --exponent 3", ".: Is a directory", 1},
      {"$U rsa apply --modulus 1 --exponent 3", "the modulus is below 2", 1},
      {"$U rsa apply --modulus 33 --exponent=-3", "the exponent is negative", 1},
      {"$U rsa apply --modulus 3x3 --exponent 3", "'x' at position 2", 1},
      {"$U rsa apply abc --modulus 0xffffff --exponent 3 >/dev/full", "could not be written", 1},
      {"$U rsa seal --modulus 33 --exponent 3", "seal", 2},
      {"$U rsa apply --modulus 33", "--exponent", 2}};
  expectRows(std::begin(rows), std::end(rows));
}

}  // namespace
