// `ulmira digest` and `ulmira rsa` as a user calls them: what they print and leave.
#include <gtest/gtest.h>
#include <pty.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

namespace {

struct Outcome {
  std::string output;  // both streams
  int status;
};

// Runs shell lines in which `u` is the command, in a fresh folder.
Outcome run(const std::string& lines) {
  std::string folder = (std::filesystem::temp_directory_path() / "ulmira-XXXXXX").string();
  Outcome outcome{"", -1};
  if (mkdtemp(folder.data()) == nullptr) return outcome;
  const std::string script =
      "cd " + folder + "; u() { " ULM_COMMAND " \"$@\"; }\n{ " + lines + "\n} 2>&1";
  FILE* pipe = popen(script.c_str(), "r");
  if (pipe == nullptr) return outcome;
  char part[256];
  while (std::fgets(part, sizeof part, pipe) != nullptr) outcome.output += part;
  outcome.status = WEXITSTATUS(pclose(pipe));
  std::filesystem::remove_all(folder);
  return outcome;
}

struct Row {
  const char *lines, *output;  // an output without a line's end is looked for
  int status = 0;
};

void expectRows(const Row* first, const Row* last) {
  for (; first != last; ++first) {
    const Outcome outcome = run(first->lines);
    const std::string wanted = first->output;
    if (wanted.empty() || wanted.back() == '\n') {
      EXPECT_EQ(outcome.output, wanted) << first->lines;
    } else {
      EXPECT_NE(outcome.output.find(wanted), std::string::npos) << first->lines << '\n'
                                                                << outcome.output;
    }
    EXPECT_EQ(outcome.status, first->status) << first->lines;
  }
}

TEST(DigestCommand, WritesAndChecks) {
  const Row rows[] = {
      {"printf abc | u digest sha1", "a9993e364706816aba3e25717850c26c9cd0d89d  -\n"},
      {"printf abc >a; u digest sha0 a - <a",
       "0164b8a914cd2a5e74c4f7ff082c4d97f1edf880  a\n0164b8a914cd2a5e74c4f7ff082c4d97f1edf880  "
       "-\n"},
      // Names that would break a line, against the program whose form it is.
      {"n=$(printf 'a\\\\b\\nc'); r=$(printf 'x\\ry'); head -c 3000000 /dev/zero >\"$n\"; >\"$r\"\n"
       "u digest sha1 \"$n\" >own; sha1sum \"$n\" | cmp - own && sha1sum --check --status own\n"
       "u digest sha1 \"$r\" >>own; u digest sha1 --check own",
       "\\a\\\\b\\nc: OK\n\\x\\ry: OK\n"},
      {"printf abc >a; printf 'A9993E364706816ABA3E25717850C26C9CD0D89D *a\\r\\n\\n# b\\n' | "
       "u digest sha1 -c",
       "a: OK\n"},
      {"printf abc >a; u digest sha1 a >l; printf x >a; u digest sha1 -c l",
       "a: FAILED\nulmira digest: WARNING: 1 computed checksum did NOT match\n", 1},
      {"echo 'a9993e364706816aba3e25717850c26c9cd0d89d  gone' | u digest sha1 -c",
       "gone: FAILED open or read", 1},
      {"printf 'junk\\na9993e364706816aba3e25717850c26c9cd0d89d_ a\\n' | u digest sha1 -c",
       "ulmira digest: standard input: no properly formatted checksum lines found\n", 1},
      {"u digest sha1 gone . | cat; printf abc >a; u digest sha1 gone a",
       "ulmira digest: gone: No such file or directory\nulmira digest: .: Is a directory\n"
       "ulmira digest: gone: No such file or directory\n"
       "a9993e364706816aba3e25717850c26c9cd0d89d  a\n",
       1},
      {"printf abc | u digest sha1 >/dev/full", "could not be written", 1},
      {"u digest md5 a", "md5", 2}};
  expectRows(std::begin(rows), std::end(rows));
}

// A terminal is told how far a large file is, and no other stream.
TEST(DigestCommand, TellsProgressOnATerminal) {
  const std::string name =
      (std::filesystem::temp_directory_path() / "ulmira-large-XXXXXX").string();
  std::string path = name;
  const int large = mkstemp(path.data());
  ASSERT_GE(large, 0);
  ASSERT_EQ(ftruncate(large, 40 << 20), 0);
  close(large);
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  ASSERT_GE(child, 0);
  if (child == 0) {
    execl(ULM_COMMAND, ULM_COMMAND, "digest", "sha1", path.c_str(), nullptr);
    _exit(127);
  }
  std::string seen;
  std::array<char, 4096> part;
  for (ssize_t got; (got = read(terminal, part.data(), part.size())) > 0;) {
    seen.append(part.data(), static_cast<std::size_t>(got));
  }
  close(terminal);
  int ended = -1;
  waitpid(child, &ended, 0);
  EXPECT_EQ(ended, 0);
  EXPECT_NE(seen.find(path + ": 2 %"), std::string::npos) << seen;
  EXPECT_NE(seen.find("  " + path), std::string::npos) << seen;
  EXPECT_EQ(run("u digest sha1 " + path).output.find('%'), std::string::npos);
  std::filesystem::remove(path);
}

TEST(RsaCommand, AppliesAndDecrypts) {
  const Row rows[] = {
      {"printf '\\346\\012' | u rsa decrypt --modulus 3233 --exponent 2753", "41\n"},
      {"echo 41 00 | u rsa apply --hex-in --modulus 3233 --exponent 17", "E60A\n"},
      {"echo e60a | u rsa apply --hex-in --modulus 3233 --exponent 2753", "4100\n"},
      {"echo 0AE6 >b; u rsa apply b --big-endian --hex-in --modulus 3233 --exponent 2753",
       "0041\n"},
      {"echo 0AE6 | u rsa decrypt --big-endian --hex-in --modulus 3233 --exponent 2753", "41\n"},
      {"echo ' 0xCA1' >n; echo 2753 >e; printf '\\346\\012' >b\n"
       "u rsa decrypt b --raw-out --modulus @n --exponent @e; echo",
       "A\n"},
      {"echo FF | u rsa decrypt --hex-in --modulus 33 --exponent 3", "1E\n"},
      {"echo 0000 | u rsa decrypt --hex-in --modulus 3233 --exponent 17", "\n"},
      {"printf a | u rsa apply --modulus 3233 --exponent 17",
       "ulmira rsa: standard input: a block of this modulus has 2 bytes, and this one has 1\n", 1},
      {"echo 000000 | u rsa apply --hex-in --modulus 3233 --exponent 17", "this one has more", 1},
      {"echo 0000 0 | u rsa decrypt --hex-in --modulus 3233 --exponent 17", "this one has more", 1},
      {"echo 000 | u rsa decrypt --hex-in --modulus 3233 --exponent 17", "an odd number", 1},
      {"echo 0g | u rsa apply --hex-in --modulus 33 --exponent 3", "not a hexadecimal digit", 1},
      {"u rsa apply gone --modulus 33 --exponent 3", "gone: No such file or directory", 1},
      {"u rsa apply . --modulus 33 --exponent 3", ".: Is a directory", 1},
      {"u rsa apply --modulus @gone --exponent 3", "gone: No such file or directory", 1},
      {"u rsa apply --modulus @. --exponent 3", ".: Is a directory", 1},
      {"u rsa apply --modulus 1 --exponent 3", "the modulus is below 2", 1},
      {"u rsa apply --modulus 33 --exponent=-3", "the exponent is negative", 1},
      {"u rsa apply --modulus 3x3 --exponent 3", "'x' at position 2", 1},
      {"printf x | u rsa apply --modulus 33 --exponent 3 >/dev/full", "could not be written", 1},
      {"u rsa seal --modulus 33 --exponent 3", "seal", 2},
      {"u rsa apply --modulus 33", "--exponent", 2}};
  expectRows(std::begin(rows), std::end(rows));
}

}  // namespace
