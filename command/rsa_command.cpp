// `ulmira rsa`: the RSA operation on one block.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bignum/bytes.h"
#include "bignum/rsa/rsa.h"
#include "bignum/text.h"
#include "command/commands.h"
#include "command/number_argument.h"
#include "command/support/program.h"
#include "command/support/streams.h"

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
  bool bigEndian = false;
};

constexpr const char* kWhiteSpace = " \t\r\n\v\f";

// Reads a number from the argument, or from the file whose name follows an '@'.
QLInteger readNumber(const std::string& argument) {
  if (argument.empty() || argument.front() != '@') return parseNumber(argument);
  std::string text = Input(argument.substr(1)).readAll(kMaxNumberBytes);
  text.erase(0, std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  text.erase(text.find_last_not_of(kWhiteSpace) + 1);
  return parseNumber(text);
}

// Reads bytes as pairs of hexadecimal digits. Stops after `maxCount` bytes.
Bytes readHex(Input& input, std::size_t maxCount) {
  Bytes bytes;
  bool halfByte = false;
  while (bytes.size() < maxCount) {
    const std::optional<char> character = input.readByte();
    if (!character) break;
    if (*character != '\0' && std::strchr(kWhiteSpace, *character) != nullptr) continue;
    const int digit = bignum::DigitValue(*character, 16);
    if (digit < 0) throw std::runtime_error(input.name() + ": not a hexadecimal digit");
    if (halfByte) {
      bytes.back() = static_cast<std::uint8_t>(bytes.back() << 4 | digit);
    } else {
      bytes.push_back(static_cast<std::uint8_t>(digit));
    }
    halfByte = !halfByte;
  }
  if (halfByte && bytes.size() < maxCount) {
    throw std::runtime_error(input.name() + ": an odd number of hexadecimal digits");
  }
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

// Prints the block as bytes, or as hexadecimal digits on a line.
void printBlock(const Bytes& block, bool raw) {
  if (raw) {
    for (const std::uint8_t byte : block) std::cout.put(static_cast<char>(byte));
  } else {
    std::string hex(2 * block.size() + 1, '\0');
    bignum::BytesToHex(hex.data(), static_cast<std::uint32_t>(hex.size()), block.data(),
                       static_cast<std::uint32_t>(block.size()));
    hex.back() = '\n';
    std::cout << hex;
  }
}

void run(const RsaArguments& arguments) {
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
  printBlock(block, arguments.rawOut);
}

}  // namespace

void addRsaCommand(CLI::App& app, int& /*status*/) {
  const auto arguments = std::make_shared<RsaArguments>();
  CLI::App* rsa = app.add_subcommand("rsa", "The RSA operation on one block");
  rsa->footer(
      "A block has as many bytes as the modulus minus 1, the low byte first. apply prints a block\n"
      "of the same length; decrypt omits the zero bytes at its high end. Numbers: decimal, 0x1F\n"
      "or 1Fh, 17o, 101b, or @FILE to read one from a file.");
  rsa->add_option("OPERATION", arguments->operation, "apply or decrypt")
      ->required()
      ->check(CLI::IsMember({"apply", "decrypt"}));
  rsa->add_option("FILE", arguments->file, "The block; - or no argument reads standard input");
  rsa->add_option("--modulus", arguments->modulus, "The key's modulus")->required();
  rsa->add_option("--exponent", arguments->exponent, "The key's exponent")->required();
  rsa->add_flag("--hex-in", arguments->hexIn, "The block consists of hexadecimal digits");
  rsa->add_flag("--raw-out", arguments->rawOut, "Write bytes instead of hexadecimal digits");
  rsa->add_flag("--big-endian", arguments->bigEndian,
                "Blocks have the high byte first, as other tools write them");
  rsa->callback([arguments] { run(*arguments); });
}

}  // namespace ulm::tools
