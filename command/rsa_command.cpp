// `ulmira rsa`: the RSA operation on one block.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bignum/bytes.h"
#include "bignum/rsa/rsa.h"
#include "bignum/text.h"
#include "command/commands.h"
#include "command/json_text.h"
#include "command/number_argument.h"
#include "command/support/streams.h"
#include "command/support/text.h"

namespace ulm::tools {
namespace {

using bignum::QLInteger;
using Bytes = std::vector<std::uint8_t>;

struct RsaArguments {
  std::string operation;
  std::string modulus;
  std::string exponent;
  std::string file = "-";
  bool hexIn = false;
  bool rawOut = false;
  bool json = false;
  bool bigEndian = false;
};

constexpr const char* kWhiteSpace = " \t\r\n\v\f";

constexpr std::string_view kModulusKey = "Modulus=";  // before bare hexadecimal digits

// Reads a number from the argument, or from the file whose name follows an '@'.
QLInteger readNumber(const std::string& argument) {
  if (argument.empty() || argument.front() != '@') return parseNumber(argument);
  Input input(argument.substr(1));
  std::string text = input.readAll(kMaxNumberBytes);
  text.erase(0, std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  text.erase(text.find_last_not_of(kWhiteSpace) + 1);
  const bool hasKey = text.starts_with(kModulusKey);
  try {
    return hasKey ? parseNumber(text.substr(kModulusKey.size()), 16) : parseNumber(text);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(input.name() + ": " + error.what());
  }
}

// Reads bytes as pairs of hexadecimal digits. White space and colons are skipped. Stops after
// `maxCount` bytes.
Bytes readHex(Input& input, std::size_t maxCount) {
  Bytes bytes;
  std::size_t line = 1;
  bool halfByte = false;
  const auto fail = [&](const std::string& what) {
    throw std::runtime_error(input.name() + ": line " + std::to_string(line) + ": " + what);
  };
  while (bytes.size() < maxCount) {
    const std::optional<char> character = input.readByte();
    if (!character) break;
    if (*character == '\n') ++line;
    if (*character == ':') continue;
    if (*character != '\0' && std::strchr(kWhiteSpace, *character) != nullptr) continue;
    const int digit = bignum::DigitValue(*character, 16);
    if (digit < 0) {
      fail("'" + printable(std::string(1, *character)) + "' is not a hexadecimal digit");
    }
    if (halfByte) {
      bytes.back() = static_cast<std::uint8_t>(bytes.back() << 4 | digit);
    } else {
      bytes.push_back(static_cast<std::uint8_t>(digit));
    }
    halfByte = !halfByte;
  }
  if (halfByte && bytes.size() < maxCount) fail("an odd number of hexadecimal digits");
  return bytes;
}

// Reads a block of exactly `size` bytes. It tries to read one more, to refuse a block that is too
// long.
Bytes readBlock(const RsaArguments& arguments, std::size_t size) {
  Input input(arguments.file);
  Bytes block;
  if (arguments.hexIn) {
    block = readHex(input, size + 1);
  } else {
    block.resize(size + 1);
    block.resize(input.read(block.data(), block.size()));
  }
  if (block.size() != size) {
    const std::string found = block.size() > size ? "more" : std::to_string(block.size());
    throw std::runtime_error(input.name() + ": a block of this modulus has " +
                             std::to_string(size) + " bytes, and this one has " + found);
  }
  return block;
}

// Applies the RSA function without padding rules. The result has the length of the block.
Bytes applyTo(const bignum::QLRSAFunction& function, const Bytes& block) {
  Bytes result(block.size());
  ToBytes(function.Apply(bignum::fromBytesLowFirst(block)), result.data(),
          static_cast<std::uint32_t>(result.size()));
  return result;
}

// Decrypts a block. The result has no zero bytes at its high end.
Bytes decryptWith(const bignum::QLRSADecryptor& decryptor, const Bytes& block) {
  Bytes result(block.size());
  const std::uint32_t bits = decryptor.Decrypt(result.data(), block.data());
  result.resize(bignum::bytesForBits(bits));
  return result;
}

std::string hexOf(const Bytes& block) {
  std::string hex(2 * block.size() + 1, '\0');
  bignum::BytesToHex(hex.data(), static_cast<std::uint32_t>(hex.size()), block.data(),
                     static_cast<std::uint32_t>(block.size()));
  hex.pop_back();  // the terminator
  return hex;
}

// Prints the block as bytes, as JSON, or as hexadecimal digits on a line.
void printBlock(const Bytes& block, const RsaArguments& arguments) {
  if (arguments.rawOut) {
    for (const std::uint8_t byte : block) std::cout.put(static_cast<char>(byte));
  } else if (arguments.json) {
    std::cout << jsonText(
        {{"operation", arguments.operation}, {"bytes", block.size()}, {"block", hexOf(block)}});
  } else {
    std::cout << hexOf(block) << '\n';
  }
}

// Throws if more than one of the inputs is standard input.
void requireOneStandardInput(const RsaArguments& arguments) {
  const int count =
      (arguments.file == "-") + (arguments.modulus == "@-") + (arguments.exponent == "@-");
  if (count > 1) {
    throw std::runtime_error(
        "standard input: can be only one of the block, the modulus and the exponent");
  }
}

void run(const RsaArguments& arguments) {
  requireOneStandardInput(arguments);
  const QLInteger modulus = readNumber(arguments.modulus);
  const QLInteger exponent = readNumber(arguments.exponent);
  if (modulus < 2) throw std::runtime_error("the modulus is below 2");
  if (exponent.IsNegative()) throw std::runtime_error("the exponent is negative");
  const bignum::QLRSADecryptor decryptor(modulus, exponent);
  const std::uint32_t bits = decryptor.MaxOutputBits();
  Bytes block = readBlock(arguments, bignum::bytesForBits(bits));
  if (arguments.bigEndian) std::reverse(block.begin(), block.end());
  block = arguments.operation == "apply" ? applyTo(decryptor.function, block)
                                         : decryptWith(decryptor, block);
  if (arguments.bigEndian) std::reverse(block.begin(), block.end());
  printBlock(block, arguments);
}

constexpr const char* kFooter = R"(BLOCKS
  A block has as many bytes as the modulus minus 1, the low byte first. apply prints a block of
  the same length; decrypt omits the zero bytes at its high end.

NUMBERS
  123, 0x1F or 1Fh, 0o17 or 17o, 0b101 or 101b, 00:9f:1c, or @FILE to read one from a file, where
  the line Modulus=... of openssl and its lines of pairs with colons are read too.

EXAMPLES
  openssl rsa -pubin -in key.pem -noout -modulus >modulus.txt
  ulmira rsa apply --modulus @modulus.txt --exponent 65537 --big-endian signature.bin
  echo 0A:E6 | ulmira rsa decrypt --hex-in --big-endian --modulus 3233 --exponent 2753
)";

}  // namespace

void addRsaCommand(CLI::App& app, int& /*status*/) {
  const auto arguments = std::make_shared<RsaArguments>();
  CLI::App* rsa = app.add_subcommand("rsa", "The RSA operation on one block");
  rsa->footer(kFooter);
  rsa->add_option("OPERATION", arguments->operation, "apply or decrypt")
      ->required()
      ->check(CLI::IsMember({"apply", "decrypt"}));
  rsa->add_option("FILE", arguments->file, "The block; - or no argument reads standard input");
  rsa->add_option("--modulus", arguments->modulus, "The key's modulus")->required();
  rsa->add_option("--exponent", arguments->exponent, "The key's exponent")->required();
  rsa->add_flag("--hex-in", arguments->hexIn,
                "The block consists of hexadecimal digits, in pairs with colons or without");
  CLI::Option* const raw =
      rsa->add_flag("--raw-out", arguments->rawOut, "Write bytes instead of hexadecimal digits");
  rsa->add_flag("--json", arguments->json, "Print one JSON object")->excludes(raw);
  rsa->add_flag("--big-endian", arguments->bigEndian,
                "Blocks have the high byte first, as other tools write them");
  rsa->callback([arguments] { run(*arguments); });
}

}  // namespace ulm::tools
