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

struct Arguments {
  std::string operation;
  std::string modulus;
  std::string exponent;
  std::string file = "-";
  bool hexIn = false;
  bool rawOut = false;
  bool bigEndian = false;
};

constexpr const char* kSpace = " \t\r\n\v\f";

// A number as text, or in a file whose name follows an '@'.
QLInteger numberOf(const std::string& argument) {
  if (argument.empty() || argument.front() != '@') return parseNumber(argument);
  std::string text = Input(argument.substr(1)).readAll(kMostNumberBytes);
  text.erase(0, std::min(text.find_first_not_of(kSpace), text.size()));
  text.erase(text.find_last_not_of(kSpace) + 1);
  return parseNumber(text);
}

// The bytes that pairs of hexadecimal digits name, at most `most`; what follows them is not read.
Bytes readHex(Input& input, std::size_t most) {
  Bytes bytes;
  bool halfByte = false;
  while (bytes.size() < most) {
    const std::optional<char> next = input.readByte();
    if (!next) break;
    if (*next != '\0' && std::strchr(kSpace, *next) != nullptr) continue;
    const int digit = bignum::DigitValue(*next, 16);
    if (digit < 0) throw std::runtime_error(input.name() + ": not a hexadecimal digit");
    if (halfByte) {
      bytes.back() = static_cast<std::uint8_t>(bytes.back() << 4 | digit);
    } else {
      bytes.push_back(static_cast<std::uint8_t>(digit));
    }
    halfByte = !halfByte;
  }
  if (halfByte && bytes.size() < most) {
    throw std::runtime_error(input.name() + ": an odd number of hexadecimal digits");
  }
  return bytes;
}

Bytes readBlock(const Arguments& given, std::size_t size) {
  Input input(given.file);
  Bytes block;
  if (given.hexIn) {
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

// The function alone: a block of the same length, with its zero bytes.
Bytes applyTo(const bignum::QLRSAFunction& function, const Bytes& block) {
  Bytes result(block.size());
  ToBytes(function.Apply(bignum::fromBytesLowFirst(block)), result.data(),
          static_cast<std::uint32_t>(result.size()));
  return result;
}

Bytes decryptWith(const bignum::QLRSADecryptor& decryptor, const Bytes& block) {
  Bytes result(block.size());
  const std::uint32_t bits = decryptor.Decrypt(result.data(), block.data());
  result.resize(bits / 8 + (bits % 8 != 0 ? 1 : 0));
  return result;
}

void write(const Bytes& block, bool raw) {
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

void run(const Arguments& given) {
  const QLInteger modulus = numberOf(given.modulus);
  const QLInteger exponent = numberOf(given.exponent);
  if (modulus < 2) throw std::runtime_error("the modulus is below 2");
  if (exponent.IsNegative()) throw std::runtime_error("the exponent is negative");
  const bignum::QLRSADecryptor decryptor(modulus, exponent);
  const std::size_t bits = decryptor.MaxOutputBits();
  Bytes block = readBlock(given, (bits + 7) / 8);
  if (given.bigEndian) std::reverse(block.begin(), block.end());
  block = given.operation == "apply" ? applyTo(decryptor.function, block)
                                     : decryptWith(decryptor, block);
  if (given.bigEndian) std::reverse(block.begin(), block.end());
  write(block, given.rawOut);
}

}  // namespace

void addRsaCommand(CLI::App& app, int& /*status*/) {
  const auto given = std::make_shared<Arguments>();
  CLI::App* rsa = app.add_subcommand("rsa", "The RSA operation on one block");
  rsa->footer(
      "A block has as many bytes as the modulus less 1, the low byte first. apply gives a block\n"
      "of the same length; decrypt drops the zero bytes at its high end. Numbers: decimal, 0x1F\n"
      "or 1Fh, 17o, 101b, or @FILE for one in a file.");
  rsa->add_option("OPERATION", given->operation, "apply or decrypt")
      ->required()
      ->check(CLI::IsMember({"apply", "decrypt"}));
  rsa->add_option("FILE", given->file, "The block; none, or -, is standard input");
  rsa->add_option("--modulus", given->modulus, "The key's modulus")->required();
  rsa->add_option("--exponent", given->exponent, "The key's exponent")->required();
  rsa->add_flag("--hex-in", given->hexIn, "The block is given as hexadecimal digits");
  rsa->add_flag("--raw-out", given->rawOut, "Write bytes instead of hexadecimal digits");
  rsa->add_flag("--big-endian", given->bigEndian,
                "Blocks have the high byte first, as other tools write them");
  rsa->callback([given] { run(*given); });
}

}  // namespace ulm::tools
