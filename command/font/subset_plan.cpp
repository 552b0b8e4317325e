#include "command/font/subset_plan.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "command/support/streams.h"
#include "command/support/text.h"

namespace ulm::tools {
namespace {

constexpr std::uint32_t kFirstPrivate = 0xE000;
constexpr std::uint32_t kLastPrivate = 0xF8FF;
constexpr std::uint32_t kMaxGlyphBytes = 65534;  // the largest length that the writer takes

using Numbers = std::vector<std::uint32_t>;

constexpr std::uint64_t kMaxTextBytes = 1u << 26;

// Reads a text file without its byte order mark.
std::u32string readTextFile(const std::string& file) {
  Input input(file);
  const std::string bytes = input.readAll(kMaxTextBytes);
  std::u32string text;
  try {
    text = decodeUtf8(bytes);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(input.name() + ": " + error.what());
  }
  if (!text.empty() && text[0] == U'\uFEFF') text.erase(0, 1);
  return text;
}

// Reads a number up to `maximum`: a character in radix 16, a glyph index in radix 10.
std::uint32_t parseNumber(const std::string& word, int radix, std::uint32_t maximum) {
  const char* digits = radix == 16 ? "0123456789abcdefABCDEF" : "0123456789";
  if (!word.empty() && word.size() <= 8 && word.find_first_not_of(digits) == std::string::npos) {
    const unsigned long value = std::stoul(word, nullptr, radix);
    if (value <= maximum) return static_cast<std::uint32_t>(value);
  }
  throw std::runtime_error('"' + word + "\": no " +
                           (radix == 16 ? "character (as U+0041)" : "glyph number"));
}

// Reads numbers and ranges, which are separated by commas or blanks. Returns each number once, in
// ascending order.
Numbers parseList(const std::string& list, int radix, std::uint32_t maximum) {
  const auto parse = [&](std::string word) {
    if (radix == 16 && word.size() > 2 && (word[0] == 'U' || word[0] == 'u') && word[1] == '+') {
      word.erase(0, 2);
    }
    return parseNumber(word, radix, maximum);
  };
  std::vector<bool> listed(maximum + std::size_t{1});
  for (std::size_t end = 0, start = 0; start < list.size(); start = end + 1) {
    end = std::min(list.find_first_of(", \t\r\n", start), list.size());
    if (end == start) continue;
    const std::string word = list.substr(start, end - start);
    const std::size_t dash = word.find('-');
    if (dash != std::string::npos && (dash == 0 || dash + 1 == word.size())) {
      throw std::runtime_error('"' + word + "\": a range needs both its ends, as " +
                               (radix == 16 ? "U+0041-U+005A" : "7-12"));
    }
    const std::uint32_t first = parse(word.substr(0, dash));
    const std::uint32_t last = dash == std::string::npos ? first : parse(word.substr(dash + 1));
    if (last < first) throw std::runtime_error('"' + word + "\": a range that runs backwards");
    std::fill(listed.begin() + first, listed.begin() + last + 1, true);
  }
  Numbers numbers;
  for (std::uint32_t number = 0; number <= maximum; ++number) {
    if (listed[number]) numbers.push_back(number);
  }
  return numbers;
}

// Returns the names of ascending numbers. A long run of successive numbers becomes a range.
std::string namesOfNumbers(const Numbers& numbers, std::string (*name)(std::uint32_t)) {
  constexpr std::size_t kLongRun = 16;
  std::string text;
  for (std::size_t i = 0; i < numbers.size();) {
    std::size_t run = 1;
    while (i + run < numbers.size() && numbers[i + run] == numbers[i] + run) ++run;
    text += ' ' + name(numbers[i]);
    if (run > kLongRun) text += '-' + name(numbers[i + run - 1]);
    i += run > kLongRun ? run : 1;
  }
  return text;
}
std::string characterName(std::uint32_t code) { return codeName(code); }
std::string glyphName(std::uint32_t glyph) { return std::to_string(glyph); }

// Returns 0 for U+FFFF, which ends every character map of the new font's format, and for U+0000,
// which belongs to .notdef.
std::uint16_t glyphOfCode(const FontFile& font, std::uint32_t code) {
  return code == 0 || code >= 0xFFFF ? std::uint16_t{0} : font.glyphOf(code);
}

// Returns true if the writer can copy the glyph: the font has it, and its offsets in glyf are
// valid.
bool isUsable(const FontFile& font, std::uint32_t glyph) {
  if (glyph >= font->numGlyphs) return false;
  const std::uint32_t begin = font->glyphOffsets[glyph], end = font->glyphOffsets[glyph + 1];
  return begin <= end && end - begin <= kMaxGlyphBytes;
}

// Collects the glyphs of a plan.
class Planner {
 public:
  explicit Planner(const FontFile& font) : font_(font) {
    if (!isUsable(font, 0)) throw std::runtime_error("the font's glyph 0, .notdef, is damaged");
    plan_.glyphs.push_back(0);
    plan_.codes.push_back(0);
  }

  void takeCharacters(const Numbers& codes) {
    Numbers unmapped, beyondBmp, damaged;
    for (const std::uint32_t code : codes) {
      const std::uint16_t glyph = glyphOfCode(font_, code);
      if (code > 0xFFFF) {
        beyondBmp.push_back(code);
      } else if (glyph == 0) {
        unmapped.push_back(code);
      } else if (!isUsable(font_, glyph)) {
        damaged.push_back(code);
      } else {
        add(code, glyph);
      }
    }
    leaveOut("not mapped by the font:", unmapped, characterName);
    leaveOut("beyond U+FFFF, where the new font's character map ends:", beyondBmp, characterName);
    leaveOut("mapped to damaged glyphs:", damaged, characterName);
  }

  void takeGlyphs(Numbers glyphs) {
    const auto unusable = std::stable_partition(
        glyphs.begin(), glyphs.end(), [&](std::uint32_t glyph) { return isUsable(font_, glyph); });
    leaveOut("not in the font, or damaged:", Numbers(unusable, glyphs.end()), glyphName);
    glyphs.erase(unusable, glyphs.end());
    requestsNotdef_ = !glyphs.empty() && glyphs[0] == 0;

    const std::vector<std::uint16_t> lowestCodes = font_.lowestCodes();
    std::vector<std::pair<std::uint32_t, std::uint32_t>> glyphsByCode;
    Numbers withoutCode;
    for (const std::uint32_t glyph : glyphs) {
      if (glyph == 0) continue;
      if (lowestCodes[glyph] == 0) {
        withoutCode.push_back(glyph);
      } else {
        glyphsByCode.emplace_back(lowestCodes[glyph], glyph);
      }
    }
    const Numbers assigned = assignCodes(withoutCode);
    for (std::size_t i = 0; i < withoutCode.size(); ++i) {
      glyphsByCode.emplace_back(assigned[i], withoutCode[i]);
    }
    std::sort(glyphsByCode.begin(), glyphsByCode.end());
    for (const auto& [code, glyph] : glyphsByCode) add(code, static_cast<std::uint16_t>(glyph));
  }

  SubsetPlan finish() {
    if (plan_.glyphs.size() == 1 && !requestsNotdef_) {
      std::string why;
      for (const std::string& line : plan_.leftOut) why += "; " + line;
      throw std::runtime_error("no glyphs to take" + why);
    }
    return std::move(plan_);
  }

 private:
  // Returns private-use codes that the font does not map, one for each glyph, and adds them to the
  // plan. Throws if there are not enough of them.
  Numbers assignCodes(const Numbers& glyphs) {
    Numbers unused;
    for (std::uint32_t code = kFirstPrivate; code <= kLastPrivate; ++code) {
      if (font_.glyphOf(code) == 0) unused.push_back(code);
    }
    if (glyphs.size() > unused.size()) {
      throw std::runtime_error(
          std::to_string(glyphs.size()) + " of the glyphs are reached by no character, and " +
          codeName(kFirstPrivate) + " to " + codeName(kLastPrivate) + " have only " +
          std::to_string(unused.size()) + " unused codes; the first glyph without a code is " +
          std::to_string(glyphs[unused.size()]));
    }
    unused.resize(glyphs.size());
    plan_.assigned.assign(unused.begin(), unused.end());
    return unused;
  }
  void add(std::uint32_t code, std::uint16_t glyph) {
    plan_.codes.push_back(static_cast<std::uint16_t>(code));
    plan_.glyphs.push_back(glyph);
  }
  void leaveOut(const char* why, const Numbers& numbers, std::string (*name)(std::uint32_t)) {
    if (!numbers.empty())
      plan_.leftOut.push_back("left out, " + (why + namesOfNumbers(numbers, name)));
  }

  const FontFile& font_;
  SubsetPlan plan_;
  bool requestsNotdef_ = false;
};

Numbers charactersOf(std::u32string text) {
  std::sort(text.begin(), text.end());
  text.erase(std::unique(text.begin(), text.end()), text.end());
  return {text.begin(), text.end()};
}

}  // namespace

SubsetPlan planSubset(const FontFile& font, const SubsetOptions& options) {
  Planner planner(font);
  std::u32string text;
  switch (options.input) {
    case SubsetInput::Text:
      text = decodeUtf8(options.list);
      planner.takeCharacters(charactersOf(text));
      break;
    case SubsetInput::TextFile: {
      text = readTextFile(options.list);
      std::u32string characters = text;
      std::erase_if(characters, [](char32_t code) { return code == U'\n' || code == U'\r'; });
      planner.takeCharacters(charactersOf(std::move(characters)));
      break;
    }
    case SubsetInput::Unicodes:
      planner.takeCharacters(parseList(options.list, 16, 0x10FFFF));
      break;
    case SubsetInput::Glyphs:
      planner.takeGlyphs(parseList(options.list, 10, 0xFFFF));
      break;
  }
  SubsetPlan plan = planner.finish();
  if (text.empty()) {
    std::copy_if(plan.codes.begin() + 1, plan.codes.end(), std::back_inserter(text),
                 [&](char32_t code) {
                   return !std::binary_search(plan.assigned.begin(), plan.assigned.end(), code);
                 });
  }
  plan.text = std::move(text);
  return plan;
}

}  // namespace ulm::tools
