#include "command/font/subset_plan.h"

#include <algorithm>
#include <iterator>
#include <numeric>
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

// A list of characters or of glyphs.
struct ListKind {
  int radix;
  std::uint32_t maximum;
  const char* what;   // one of the numbers
  const char* range;  // an example
};
constexpr ListKind kCharacters{16, 0x10FFFF, "character (as U+0041)", "U+0041-U+005A"};
constexpr ListKind kGlyphs{10, 0xFFFF, "glyph number", "7-12"};

// Reads a number of the list, for characters with or without U+ or 0x before it.
std::uint32_t parseNumber(std::string word, const ListKind& kind) {
  const std::string given = word;
  if (kind.radix == 16 && word.size() > 2 &&
      (((word[0] == 'U' || word[0] == 'u') && word[1] == '+') ||
       (word[0] == '0' && (word[1] == 'x' || word[1] == 'X')))) {
    word.erase(0, 2);
  }
  const char* digits = kind.radix == 16 ? "0123456789abcdefABCDEF" : "0123456789";
  if (!word.empty() && word.size() <= 8 && word.find_first_not_of(digits) == std::string::npos) {
    const unsigned long value = std::stoul(word, nullptr, kind.radix);
    if (value <= kind.maximum) return static_cast<std::uint32_t>(value);
  }
  throw std::runtime_error('"' + given + "\": no " + kind.what);
}

// Adds the numbers of a list, which are separated by commas or blanks: numbers, ranges, and '*',
// which sets `all`.
void readList(const std::string& list, const ListKind& kind, std::vector<bool>& listed, bool& all) {
  listed.resize(kind.maximum + std::size_t{1});
  for (std::size_t end = 0, start = 0; start < list.size(); start = end + 1) {
    end = std::min(list.find_first_of(", \t\r\n", start), list.size());
    if (end == start) continue;
    const std::string word = list.substr(start, end - start);
    if (word == "*") {
      all = true;
      continue;
    }
    const std::size_t dash = word.find('-');
    if (dash != std::string::npos && (dash == 0 || dash + 1 == word.size())) {
      throw std::runtime_error('"' + word + "\": a range needs both its ends, as " + kind.range);
    }
    const std::uint32_t first = parseNumber(word.substr(0, dash), kind);
    const std::uint32_t last =
        dash == std::string::npos ? first : parseNumber(word.substr(dash + 1), kind);
    if (last < first) throw std::runtime_error('"' + word + "\": a range that runs backwards");
    std::fill(listed.begin() + first, listed.begin() + last + 1, true);
  }
}

Numbers numbersOf(const std::vector<bool>& listed) {
  Numbers numbers;
  for (std::size_t number = 0; number < listed.size(); ++number) {
    if (listed[number]) numbers.push_back(static_cast<std::uint32_t>(number));
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
  explicit Planner(const FontFile& font) : font_(font), taken_(font->numGlyphs) {
    if (!isUsable(font, 0)) throw std::runtime_error("the font's glyph 0, .notdef, is damaged");
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

  // Takes the glyphs that no taken character maps to.
  void takeGlyphs(Numbers glyphs) {
    const auto unusable = std::stable_partition(
        glyphs.begin(), glyphs.end(), [&](std::uint32_t glyph) { return isUsable(font_, glyph); });
    leaveOut("not in the font, or damaged:", Numbers(unusable, glyphs.end()), glyphName);
    glyphs.erase(unusable, glyphs.end());
    requestsNotdef_ = !glyphs.empty() && glyphs[0] == 0;

    const std::vector<std::uint16_t> lowestCodes = font_.lowestCodes();
    Numbers withoutCode;
    for (const std::uint32_t glyph : glyphs) {
      if (glyph == 0 || taken_[glyph]) continue;
      if (lowestCodes[glyph] == 0) {
        withoutCode.push_back(glyph);
      } else {
        add(lowestCodes[glyph], glyph);
      }
    }
    const Numbers assigned = assignCodes(withoutCode);
    for (std::size_t i = 0; i < withoutCode.size(); ++i) add(assigned[i], withoutCode[i]);
  }

  SubsetPlan finish() {
    if (glyphsByCode_.empty() && !requestsNotdef_) {
      std::string why;
      for (const std::string& line : plan_.leftOut) why += "; " + line;
      throw std::runtime_error("no glyphs to take" + why);
    }
    // No two entries have the same code: a glyph of a list is left out if a character brought it.
    std::sort(glyphsByCode_.begin(), glyphsByCode_.end());
    plan_.glyphs.push_back(0);
    plan_.codes.push_back(0);
    for (const auto& [code, glyph] : glyphsByCode_) {
      plan_.codes.push_back(code);
      plan_.glyphs.push_back(glyph);
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
  void add(std::uint32_t code, std::uint32_t glyph) {
    glyphsByCode_.emplace_back(static_cast<std::uint16_t>(code), static_cast<std::uint16_t>(glyph));
    taken_[glyph] = true;
  }
  void leaveOut(const char* why, const Numbers& numbers, std::string (*name)(std::uint32_t)) {
    if (!numbers.empty())
      plan_.leftOut.push_back("left out, " + (why + namesOfNumbers(numbers, name)));
  }

  const FontFile& font_;
  SubsetPlan plan_;
  std::vector<std::pair<std::uint16_t, std::uint16_t>> glyphsByCode_;
  std::vector<bool> taken_;  // by glyph index
  bool requestsNotdef_ = false;
};

// Returns the characters that the font maps, and those of the request.
Numbers withAllCharacters(const FontFile& font, const Numbers& characters) {
  Numbers all;
  for (std::uint32_t code = 1; code < 0xFFFF; ++code) {
    if (font.glyphOf(code) != 0) all.push_back(code);
  }
  Numbers both;
  std::set_union(all.begin(), all.end(), characters.begin(), characters.end(),
                 std::back_inserter(both));
  return both;
}

}  // namespace

SubsetRequest readSubsetLists(const SubsetLists& lists) {
  SubsetRequest request;
  std::vector<bool> characters(kCharacters.maximum + std::size_t{1}), glyphs;
  const auto addText = [&](const std::u32string& text) {
    request.text += (request.text.empty() ? U"" : U"\n") + text;
  };
  for (const std::string& list : lists.texts) {
    const std::u32string text = decodeUtf8(list);
    addText(text);
    for (const char32_t code : text) characters[code] = true;
  }
  for (const std::string& file : lists.textFiles) {
    const std::u32string text = readTextFile(file);
    addText(text);
    for (const char32_t code : text) {
      if (code != U'\n' && code != U'\r') characters[code] = true;
    }
  }
  for (const std::string& list : lists.unicodes) {
    readList(list, kCharacters, characters, request.allCharacters);
  }
  for (const std::string& list : lists.glyphs) {
    readList(list, kGlyphs, glyphs, request.allGlyphs);
  }
  request.characters = numbersOf(characters);
  request.glyphs = numbersOf(glyphs);
  return request;
}

SubsetPlan planSubset(const FontFile& font, const SubsetRequest& request) {
  Planner planner(font);
  planner.takeCharacters(request.allCharacters ? withAllCharacters(font, request.characters)
                                               : request.characters);
  Numbers glyphs = request.glyphs;
  if (request.allGlyphs) {
    glyphs.erase(glyphs.begin(), std::lower_bound(glyphs.begin(), glyphs.end(), font->numGlyphs));
    Numbers all(font->numGlyphs);
    std::iota(all.begin(), all.end(), 0u);
    glyphs.insert(glyphs.begin(), all.begin(), all.end());
  }
  if (!glyphs.empty()) planner.takeGlyphs(std::move(glyphs));
  SubsetPlan plan = planner.finish();
  plan.text = request.text;
  plan.isList = request.text.empty();
  std::u32string shown = request.text;
  std::sort(shown.begin(), shown.end());
  for (std::size_t i = 1; i < plan.codes.size(); ++i) {
    const char32_t code = plan.codes[i];
    if (std::binary_search(plan.assigned.begin(), plan.assigned.end(), code)) continue;
    if (std::binary_search(shown.begin(), shown.end(), code)) continue;
    if (!plan.isList) plan.text += U'\n';
    plan.text += code;
  }
  return plan;
}

}  // namespace ulm::tools
