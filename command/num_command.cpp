// `ulmira num`: arithmetic on numbers of any size.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "command/busy_line.h"
#include "command/commands.h"
#include "command/json_text.h"
#include "command/num_operations.h"
#include "command/number_argument.h"
#include "command/support/streams.h"

namespace ulm::tools {
namespace {

using Texts = std::vector<std::string>;

struct NumArguments {
  std::uint32_t radix = 10;
  std::uint32_t inputRadix = 10;
  bool hex = false;
  bool prefix = false;
  bool bare = false;
  bool json = false;

  std::uint32_t resultRadix() const { return hex ? 16 : radix; }
  NumberForm form() const {
    return bare ? NumberForm::Bare : hex || prefix ? NumberForm::Prefix : NumberForm::Mark;
  }
};

Texts wordsOf(const std::string& text) {
  std::istringstream stream(text);
  Texts words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// A number as the user wrote it.
struct Word {
  std::string text;
  std::string where;  // the input and the line, for messages; empty for an argument
};

// Returns the numbers of the command line one after another. An argument '-' or @FILE is replaced
// by the numbers of that input, which is read as they are asked for.
class NumberSource {
 public:
  explicit NumberSource(Texts arguments) : arguments_(std::move(arguments)) {}

  std::optional<Word> next() {
    for (;;) {
      if (nextWord_ < lineWords_.size()) return Word{lineWords_[nextWord_++], where()};
      if (input_) {
        if (readLine()) continue;
        input_.reset();
      }
      if (nextArgument_ == arguments_.size()) return std::nullopt;
      const std::string& argument = arguments_[nextArgument_++];
      if (argument != "-" && argument.rfind('@', 0) != 0) return Word{argument, ""};
      input_.emplace(argument == "-" ? argument : argument.substr(1));
      line_ = 0;
    }
  }

  // Returns true if the next number may come later, so that results are shown before it is read.
  bool mayWait() const {
    return input_ && nextWord_ == lineWords_.size() && !input_->size().has_value();
  }

 private:
  std::string where() const { return input_->name() + ": line " + std::to_string(line_) + ": "; }

  bool readLine() {
    std::string line;
    if (!input_->readLine(line, kMaxNumberBytes)) return false;
    ++line_;
    lineWords_ = wordsOf(line);
    nextWord_ = 0;
    return true;
  }

  Texts arguments_;
  std::size_t nextArgument_ = 0;
  std::optional<Input> input_;  // of the last argument
  std::size_t line_ = 0;        // its last line, from 1
  Texts lineWords_;
  std::size_t nextWord_ = 0;
};

// The work of one call.
class NumRun {
 public:
  NumRun(const NumOperation& operation, const NumArguments& arguments, Texts numbers)
      : operation_(operation),
        arguments_(arguments),
        operandCount_(wordsOf(operation.operands).size()),
        resultNames_(wordsOf(operation.results)),
        source_(std::move(numbers)),
        busy_("num " + std::string(operation.name)) {}

  // Prints a line for each group of operands. A group with a number that cannot be read, and one
  // without a result, is reported and left out. Returns the exit code.
  int run() {
    int status = 0;
    for (std::size_t groups = 0;; ++groups) {
      std::vector<Word> words;
      while (words.size() < operandCount_) {
        std::optional<Word> word = source_.next();
        if (!word) break;
        words.push_back(std::move(*word));
      }
      if (words.empty()) return status;
      if (words.size() < operandCount_) return reportIncomplete(words.back());
      busy_.resume();
      if (!answer(words)) status = 1;
      busy_.pause();
      if (source_.mayWait()) flushStandardOutput();
    }
  }

 private:
  int reportIncomplete(const Word& last) const {
    printMessage("num", last.where + "a number is missing after this one: " + operation_.name +
                            " takes " + operation_.operands);
    return 1;
  }

  bool answer(const std::vector<Word>& words) {
    NumOperation::Operands operands;
    bool readable = true;
    for (const Word& word : words) {
      readable &=
          attempt(word, [&] { operands.push_back(parseNumber(word.text, arguments_.inputRadix)); });
    }
    return readable && attempt(words.back(), [&] { print(operands, operation_.run(operands)); });
  }

  // Returns false if the work throws std::runtime_error, which is reported.
  template <class Work>
  bool attempt(const Word& word, Work work) {
    try {
      work();
      return true;
    } catch (const std::runtime_error& error) {
      busy_.pause();
      printMessage("num", word.where + error.what());
      return false;
    }
  }

  void print(const NumOperation::Operands& operands,
             const std::vector<NumOperation::Result>& results) {
    Json object, values = Json::array();
    std::string line;
    for (const bignum::QLInteger& operand : operands) {
      if (arguments_.json) values.push_back(textOf(operand));
    }
    object["operands"] = std::move(values);
    for (std::size_t i = 0; i < results.size(); ++i) {
      const bool* const truth = std::get_if<bool>(&results[i]);
      const std::string text = truth == nullptr ? textOf(std::get<bignum::QLInteger>(results[i]))
                               : *truth         ? "true"
                                                : "false";
      if (arguments_.json) object[resultNames_[i]] = truth == nullptr ? Json(text) : Json(*truth);
      line += (i == 0 ? "" : " ") + text;
    }
    busy_.pause();
    std::cout << (arguments_.json ? jsonText(object) : line + '\n');
  }

  std::string textOf(const bignum::QLInteger& number) const {
    return numberText(number, arguments_.resultRadix(), arguments_.form());
  }

  const NumOperation& operation_;
  const NumArguments& arguments_;
  const std::size_t operandCount_;
  const Texts resultNames_;
  NumberSource source_;
  BusyLine busy_;
};

const NumOperation& operationNamed(const std::string& name) {
  for (const NumOperation& operation : numOperations()) {
    if (name == operation.name) return operation;
  }
  throw CLI::ValidationError("OPERATION", "unknown operation " + name);
}

// Throws a usage error if the arguments are no numbers for the operation. The numbers of an input
// are counted when it is read.
void requireOperands(const NumOperation& operation, const Texts& numbers) {
  const bool counted = std::none_of(numbers.begin(), numbers.end(), [](const std::string& text) {
    return text == "-" || text.rfind('@', 0) == 0;
  });
  const std::size_t operandCount = wordsOf(operation.operands).size();
  if (numbers.empty() || (counted && numbers.size() % operandCount != 0)) {
    throw CLI::ValidationError(operation.name, "takes " + std::string(operation.operands) +
                                                   " for each result; the command line has " +
                                                   std::to_string(numbers.size()) + " numbers");
  }
}

// Separates the options after the operation from the numbers. CLI11 would take a negative number
// for an option, so it leaves these arguments unparsed. Returns the numbers.
Texts parseOptions(CLI::App& num, const Texts& arguments) {
  Texts numbers;
  bool optionsEnded = false;
  for (auto next = arguments.begin(); next != arguments.end(); ++next) {
    if (!optionsEnded && *next == "--") {
      optionsEnded = true;
      continue;
    }
    if (optionsEnded || (next->rfind("--", 0) != 0 && *next != "-h")) {
      numbers.push_back(*next);
      continue;
    }
    const std::size_t equal = std::min(next->find('='), next->size());
    const std::string name = next->substr(0, equal);
    if (name == "-h" || name == "--help") throw CLI::CallForHelp();
    CLI::Option* const option = num.get_option_no_throw(name);
    if (option == nullptr) throw CLI::ExtrasError({*next});
    const bool takesValue = option->get_items_expected_max() > 0;
    if (takesValue && equal == next->size() && std::next(next) == arguments.end()) {
      throw CLI::ArgumentMismatch::AtLeast(name, 1, 0);
    }
    option->clear();
    option->add_result(!takesValue            ? "true"
                       : equal < next->size() ? next->substr(equal + 1)
                                              : *++next);
    option->run_callback();
  }
  return numbers;
}

std::string helpOfOperations() {
  std::string text = "OPERATIONS\n";
  for (const NumOperation& operation : numOperations()) {
    std::string line = std::string("  ") + operation.name + ' ' + operation.operands;
    line.resize(std::max<std::size_t>(line.size() + 1, 20), ' ');
    text += line + operation.description + '\n';
  }
  return text;
}

constexpr const char* kHelp = R"(
NUMBERS
  123, 0x1F or 1Fh, 0o17 or 17o, 0b101 or 101b, 7#66 in any radix of 2 to 16, 00:9f:1c for
  hexadecimal in pairs; with an optional sign. After -- no argument is an option.
  - reads numbers from standard input and @FILE from a file, separated by blanks and line ends.
  More numbers than one result needs give a line for each group of them. A group without a result
  is reported, with its line if it is from an input; the others are answered, and the exit code
  is 1. What would take more than about a minute is refused with the maximum length in bits.

PRIMES
  isprime answers true if a number passes 18 Fermat and 18 strong tests to fixed bases.

EXAMPLES
  ulmira num modpow 3 100 7
  ulmira num pow 2 521 --hex            0x2000..., as Python and C read it
  ulmira num convert --input-radix 16 --radix 10 FFFF
  seq 1 100 | ulmira num isprime -      a line for each number, as it comes
  ulmira num divmod @pairs.txt --json   {"operands":["7","2"],"quotient":"3","remainder":"1"}
)";

}  // namespace

void addNumCommand(CLI::App& app, int& status) {
  const auto arguments = std::make_shared<NumArguments>();
  CLI::App* num = app.add_subcommand("num", "Arithmetic on numbers of any size");
  num->footer(helpOfOperations() + kHelp);
  const auto addRadix = [num](const char* name, std::uint32_t& radix, const char* description) {
    num->add_option(name, radix, description)->check(CLI::Range(2, 16))->option_text("2...16");
  };
  addRadix("--radix", arguments->radix, "Radix of the results; without it, 10");
  addRadix("--input-radix", arguments->inputRadix, "Radix of numbers without a mark");
  num->add_flag("--prefix", arguments->prefix, "Results as 0x1F, 0o17 or 0b101, not 1Fh");
  num->add_flag("--hex", arguments->hex, "The same as --radix 16 --prefix");
  num->add_flag("--bare", arguments->bare, "Results without a mark or prefix");
  num->add_flag("--json", arguments->json, "Print a JSON object for each result, on a line");
  num->prefix_command();
  num->callback([num, arguments, &status] {
    Texts texts = num->remaining();
    if (texts.empty()) throw CLI::RequiredError("OPERATION");
    const NumOperation& operation = operationNamed(texts.front());
    texts.erase(texts.begin());
    Texts numbers = parseOptions(*num, texts);
    requireOperands(operation, numbers);
    status = NumRun(operation, *arguments, std::move(numbers)).run();
  });
}

}  // namespace ulm::tools
