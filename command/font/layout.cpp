// Which layout tables of a font act on a set of its glyphs.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>

#include "command/font/subset.h"
#include "truetype/bytes.h"
#include "truetype/reader/tables.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

constexpr std::uint32_t tagOf(const char (&text)[5]) {
  std::uint32_t tag = 0;
  for (std::size_t i = 0; i < 4; ++i) tag = tag << 8 | static_cast<unsigned char>(text[i]);
  return tag;
}

// The features that a browser applies without being asked, those of single scripts included. `locl`
// is left out, since it depends on a language that a list of characters does not state.
constexpr std::uint32_t kDefaultFeatures[] = {
    tagOf("abvf"), tagOf("abvm"), tagOf("abvs"), tagOf("akhn"), tagOf("blwf"), tagOf("blwm"),
    tagOf("blws"), tagOf("calt"), tagOf("ccmp"), tagOf("cfar"), tagOf("cjct"), tagOf("clig"),
    tagOf("curs"), tagOf("dist"), tagOf("fin2"), tagOf("fin3"), tagOf("fina"), tagOf("half"),
    tagOf("haln"), tagOf("init"), tagOf("isol"), tagOf("kern"), tagOf("liga"), tagOf("ljmo"),
    tagOf("mark"), tagOf("med2"), tagOf("medi"), tagOf("mkmk"), tagOf("mset"), tagOf("nukt"),
    tagOf("pref"), tagOf("pres"), tagOf("pstf"), tagOf("psts"), tagOf("rclt"), tagOf("rkrf"),
    tagOf("rlig"), tagOf("rphf"), tagOf("rvrn"), tagOf("stch"), tagOf("tjmo"), tagOf("vatu"),
    tagOf("vjmo")};

// A copy of a table. What is read beyond its end is 0, and so is everything once a bound on the
// work is reached, which only tables whose parts overlap come to.
class Table {
 public:
  Table(const FontFile& font, std::uint32_t tag)
      : bytes_(owned(copyTableByTag(font.get(), tag, &length_))) {
    if (bytes_ == nullptr) length_ = 0;
  }
  bool empty() const { return length_ == 0; }
  bool workIsDone() const { return work_ > kMostWork; }
  // Counts work that reads nothing.
  void charge(std::uint64_t work) const { work_ += work; }
  std::uint32_t u16(std::size_t offset) const {
    if (++work_ > kMostWork || length_ < 2 || offset > length_ - 2) return 0;
    return readUInt16(bytes_.get(), offset);
  }
  std::uint32_t u32(std::size_t offset) const { return u16(offset) << 16 | u16(offset + 2); }
  // What an offset leads to that is stored at `at` and counts from `base`; beyond the end where it
  // is 0, which is the offset of nothing.
  std::size_t target(std::size_t base, std::size_t at) const {
    const std::size_t offset = u16(at);
    return offset == 0 ? kNowhere : base + offset;
  }

 private:
  static constexpr std::size_t kNowhere = SIZE_MAX / 2;
  static constexpr std::uint64_t kMostWork = 20'000'000;
  std::uint32_t length_ = 0;
  std::unique_ptr<std::uint8_t[], Freed> bytes_;
  mutable std::uint64_t work_ = 0;
};

// GSUB or GPOS against glyphs.
class LayoutTable {
 public:
  LayoutTable(const FontFile& font, std::uint32_t tag, const std::vector<std::uint16_t>& glyphs)
      : table_(font, tag), substitutes_(tag == tagOf("GSUB")), glyphs_(glyphs), taken_(emptySet()) {
    for (const std::uint16_t glyph : glyphs) taken_[glyph] = true;
  }

  // Whether some lookup that a default feature leads to can change the glyphs, alone or together.
  // Where a lookup depends on its context, the context has to be possible with the glyphs, and one
  // of the lookups that it calls has to act on them.
  bool acts() {
    if (table_.empty()) return false;
    collectFeatures();
    while (!pending_.empty() && !table_.workIsDone()) {
      const std::size_t lookup = pending_.back();
      pending_.pop_back();
      if (lookupActs(lookup)) return true;
    }
    return table_.workIsDone();  // a table that is too costly to judge is named, not passed over
  }

 private:
  static constexpr std::size_t kGlyphs = 0x10000;

  // A set of glyphs or classes, none of them in it.
  std::vector<bool> emptySet() const {
    table_.charge(kGlyphs / 64);
    return std::vector<bool>(kGlyphs);
  }

  void reach(std::size_t index) {
    const std::size_t list = table_.target(0, 8);
    if (index >= table_.u16(list)) return;
    if (reached_.size() <= index) reached_.resize(index + 1);
    if (reached_[index]) return;
    reached_[index] = true;
    pending_.push_back(table_.target(list, list + 2 + 2 * index));
  }

  void collectFeatures() {
    const std::size_t list = table_.target(0, 6);
    const std::size_t count = table_.u16(list);
    for (std::size_t i = 0; i < count && !table_.workIsDone(); ++i) {
      const std::size_t entry = list + 2 + 6 * i;
      if (!std::binary_search(std::begin(kDefaultFeatures), std::end(kDefaultFeatures),
                              table_.u32(entry))) {
        continue;
      }
      const std::size_t feature = table_.target(list, entry + 4);
      const std::size_t lookups = table_.u16(feature + 2);
      for (std::size_t k = 0; k < lookups; ++k) reach(table_.u16(feature + 4 + 2 * k));
    }
  }

  bool lookupActs(std::size_t lookup) {
    const std::uint32_t extension = substitutes_ ? 7 : 9;
    const std::size_t count = table_.u16(lookup + 4);
    for (std::size_t i = 0; i < count && !table_.workIsDone(); ++i) {
      std::uint32_t type = table_.u16(lookup);
      std::size_t subtable = table_.target(lookup, lookup + 6 + 2 * i);
      if (type == extension) {
        type = table_.u16(subtable + 2);
        subtable += table_.u32(subtable + 4);
      }
      if (substitutes_ ? substitutionActs(type, subtable) : positioningActs(type, subtable)) {
        return true;
      }
    }
    return false;
  }

  bool substitutionActs(std::uint32_t type, std::size_t subtable) {
    switch (type) {
      case 1:  // one glyph for one, several, or one of several
      case 2:
      case 3:
        return covers(table_.target(subtable, subtable + 2));
      case 4:
        return ligatureActs(subtable);
      case 5:
        reachFromContext(subtable);
        return false;
      case 6:
        reachFromChain(subtable);
        return false;
      case 8:
        return reverseChainActs(subtable);
      default:
        return false;
    }
  }

  bool positioningActs(std::uint32_t type, std::size_t subtable) {
    switch (type) {
      case 1:
      case 3:  // cursive joining
        return covers(table_.target(subtable, subtable + 2));
      case 2:
        return table_.u16(subtable) == 1 ? glyphPairActs(subtable) : classPairActs(subtable);
      case 4:  // a mark on a base, a ligature or a mark
      case 5:
      case 6:
        return covers(table_.target(subtable, subtable + 2)) &&
               covers(table_.target(subtable, subtable + 4));
      case 7:
        reachFromContext(subtable);
        return false;
      case 8:
        reachFromChain(subtable);
        return false;
      default:
        return false;
    }
  }

  // Calls visit(glyph, coverage index) for each of the glyphs that is covered, until one is true.
  template <class Visit>
  bool anyCovered(std::size_t coverage, const Visit& visit) const {
    const std::size_t format = table_.u16(coverage), count = table_.u16(coverage + 2);
    for (std::size_t i = 0; i < count && !table_.workIsDone(); ++i) {
      if (format == 1) {
        const std::size_t glyph = table_.u16(coverage + 4 + 2 * i);
        if (taken_[glyph] && visit(glyph, i)) return true;
      } else if (format == 2) {
        const std::size_t range = coverage + 4 + 6 * i;
        const std::size_t first = table_.u16(range), last = table_.u16(range + 2);
        const std::size_t index = table_.u16(range + 4);
        for (auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), first);
             at != glyphs_.end() && *at <= last && !table_.workIsDone(); ++at) {
          table_.charge(1);
          if (visit(*at, index + *at - first)) return true;
        }
      }
    }
    return false;
  }
  bool covers(std::size_t coverage) const {
    return anyCovered(coverage, [](std::size_t, std::size_t) { return true; });
  }

  // The class of each of the glyphs, in their order.
  std::vector<std::uint16_t> classesOf(std::size_t classes) const {
    table_.charge(glyphs_.size() / 8);
    std::vector<std::uint16_t> found(glyphs_.size());
    const auto set = [&](std::size_t first, std::size_t last, const auto& classOf) {
      for (auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), first);
           at != glyphs_.end() && *at <= last && !table_.workIsDone(); ++at) {
        found[static_cast<std::size_t>(at - glyphs_.begin())] =
            static_cast<std::uint16_t>(classOf(*at - first));
      }
    };
    if (table_.u16(classes) == 1) {
      const std::size_t first = table_.u16(classes + 2), count = table_.u16(classes + 4);
      if (count > 0) {
        set(first, first + count - 1,
            [&](std::size_t index) { return table_.u16(classes + 6 + 2 * index); });
      }
    } else if (table_.u16(classes) == 2) {
      const std::size_t count = table_.u16(classes + 2);
      for (std::size_t i = 0; i < count && !table_.workIsDone(); ++i) {
        const std::size_t range = classes + 4 + 6 * i;
        set(table_.u16(range), table_.u16(range + 2),
            [&](std::size_t) { return table_.u16(range + 4); });
      }
    }
    return found;
  }
  std::vector<bool> classSet(std::size_t classes) const {
    std::vector<bool> set = emptySet();
    for (const std::uint16_t found : classesOf(classes)) set[found] = true;
    return set;
  }

  bool ligatureActs(std::size_t subtable) const {
    return anyCovered(table_.target(subtable, subtable + 2), [&](std::size_t, std::size_t index) {
      const std::size_t set = table_.target(subtable, subtable + 6 + 2 * index);
      const std::size_t count = table_.u16(set);
      for (std::size_t i = 0; i < count && !table_.workIsDone(); ++i) {
        const std::size_t ligature = table_.target(set, set + 2 + 2 * i);
        const std::size_t components = table_.u16(ligature + 2);
        std::size_t k = 1;
        while (k < components && taken_[table_.u16(ligature + 2 + 2 * k)]) ++k;
        if (components > 0 && k == components) return true;
      }
      return false;
    });
  }

  // The bytes of a value record, and whether one holds anything.
  static std::size_t valueLength(std::uint32_t format) {
    std::size_t length = 0;
    for (; format != 0; format &= format - 1) length += 2;
    return length;
  }
  bool hasValue(std::size_t record, std::size_t length) const {
    for (std::size_t i = 0; i < length; i += 2) {
      if (table_.u16(record + i) != 0) return true;
    }
    return false;
  }

  bool glyphPairActs(std::size_t subtable) const {
    const std::size_t length =
        valueLength(table_.u16(subtable + 4)) + valueLength(table_.u16(subtable + 6));
    return anyCovered(table_.target(subtable, subtable + 2), [&](std::size_t, std::size_t index) {
      const std::size_t set = table_.target(subtable, subtable + 10 + 2 * index);
      const std::size_t count = table_.u16(set);
      for (std::size_t i = 0; i < count && !table_.workIsDone(); ++i) {
        const std::size_t record = set + 2 + (2 + length) * i;
        if (taken_[table_.u16(record)] && hasValue(record + 2, length)) return true;
      }
      return false;
    });
  }

  bool classPairActs(std::size_t subtable) const {
    const std::size_t length =
        valueLength(table_.u16(subtable + 4)) + valueLength(table_.u16(subtable + 6));
    const std::vector<std::uint16_t> firstOf = classesOf(table_.target(subtable, subtable + 8));
    const std::vector<bool> second = classSet(table_.target(subtable, subtable + 10));
    const std::size_t firstCount = table_.u16(subtable + 12);
    const std::size_t secondCount = table_.u16(subtable + 14);
    std::vector<bool> seen = emptySet();
    return anyCovered(table_.target(subtable, subtable + 2), [&](std::size_t glyph, std::size_t) {
      const auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), glyph);
      const std::size_t row = firstOf[static_cast<std::size_t>(at - glyphs_.begin())];
      if (row >= firstCount || seen[row]) return false;
      seen[row] = true;
      for (std::size_t column = 0; column < secondCount && !table_.workIsDone(); ++column) {
        const std::size_t record = subtable + 16 + (row * secondCount + column) * length;
        if (second[column] && hasValue(record, length)) return true;
      }
      return false;
    });
  }

  bool reverseChainActs(std::size_t subtable) const {
    std::size_t at = subtable + 4;
    return covers(table_.target(subtable, subtable + 2)) && coversAll(subtable, at) &&
           coversAll(subtable, at);
  }
  // A count and as many coverages, all of which have to be possible; `at` moves behind them.
  bool coversAll(std::size_t base, std::size_t& at) const {
    const std::size_t count = table_.u16(at);
    at += 2;
    bool possible = true;
    for (std::size_t i = 0; i < count && possible && !table_.workIsDone(); ++i) {
      possible = covers(table_.target(base, at + 2 * i));
    }
    at += 2 * count;
    return possible;
  }
  // `count` glyphs or classes, all of which have to be in the set; `at` moves behind them.
  bool allIn(const std::vector<bool>& set, std::size_t count, std::size_t& at) const {
    bool possible = true;
    for (std::size_t i = 0; i < count && possible && !table_.workIsDone(); ++i) {
      possible = set[table_.u16(at + 2 * i)];
    }
    at += 2 * count;
    return possible;
  }
  void reachRecords(std::size_t at, std::size_t count) {
    for (std::size_t i = 0; i < count && !table_.workIsDone(); ++i) {
      reach(table_.u16(at + 4 * i + 2));
    }
  }

  // The rule sets of formats 1 and 2: by coverage index, or by the class of a covered glyph.
  template <class RuleOf>
  void reachFromSets(std::size_t subtable, std::size_t countAt,
                     const std::vector<std::uint16_t>* classes, const RuleOf& rule) {
    const std::size_t sets = table_.u16(countAt);
    std::vector<bool> seen = emptySet();
    anyCovered(table_.target(subtable, subtable + 2), [&](std::size_t glyph, std::size_t index) {
      if (classes != nullptr) {
        const auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), glyph);
        index = (*classes)[static_cast<std::size_t>(at - glyphs_.begin())];
      }
      if (index >= sets || seen[index]) return false;
      seen[index] = true;
      const std::size_t set = table_.target(subtable, countAt + 2 + 2 * index);
      const std::size_t count = table_.u16(set);
      for (std::size_t i = 0; i < count && !table_.workIsDone(); ++i) {
        rule(table_.target(set, set + 2 + 2 * i));
      }
      return false;
    });
  }

  void reachFromContext(std::size_t subtable) {
    const auto ruleWith = [this](const std::vector<bool>& set) {
      return [this, &set](std::size_t rule) {
        const std::size_t glyphs = table_.u16(rule);
        std::size_t at = rule + 4;
        if (glyphs > 0 && allIn(set, glyphs - 1, at)) reachRecords(at, table_.u16(rule + 2));
      };
    };
    switch (table_.u16(subtable)) {
      case 1:
        return reachFromSets(subtable, subtable + 4, nullptr, ruleWith(taken_));
      case 2: {
        const std::size_t classes = table_.target(subtable, subtable + 4);
        const std::vector<std::uint16_t> classOf = classesOf(classes);
        const std::vector<bool> set = classSet(classes);
        return reachFromSets(subtable, subtable + 6, &classOf, ruleWith(set));
      }
      case 3: {
        const std::size_t glyphs = table_.u16(subtable + 2);
        for (std::size_t i = 0; i < glyphs; ++i) {
          if (!covers(table_.target(subtable, subtable + 6 + 2 * i))) return;
        }
        return reachRecords(subtable + 6 + 2 * glyphs, table_.u16(subtable + 4));
      }
      default:
        return;
    }
  }

  void reachFromChain(std::size_t subtable) {
    const auto ruleWith = [this](const std::vector<bool>& before, const std::vector<bool>& input,
                                 const std::vector<bool>& after) {
      return [this, &before, &input, &after](std::size_t rule) {
        std::size_t at = rule + 2;
        if (!allIn(before, table_.u16(rule), at)) return;
        const std::size_t glyphs = table_.u16(at);
        at += 2;
        if (glyphs == 0 || !allIn(input, glyphs - 1, at)) return;
        const std::size_t following = table_.u16(at);
        at += 2;
        if (allIn(after, following, at)) reachRecords(at + 2, table_.u16(at));
      };
    };
    switch (table_.u16(subtable)) {
      case 1:
        return reachFromSets(subtable, subtable + 4, nullptr, ruleWith(taken_, taken_, taken_));
      case 2: {
        const std::vector<bool> before = classSet(table_.target(subtable, subtable + 4));
        const std::size_t classes = table_.target(subtable, subtable + 6);
        const std::vector<std::uint16_t> classOf = classesOf(classes);
        const std::vector<bool> input = classSet(classes);
        const std::vector<bool> after = classSet(table_.target(subtable, subtable + 8));
        return reachFromSets(subtable, subtable + 10, &classOf, ruleWith(before, input, after));
      }
      case 3: {
        std::size_t at = subtable + 2;
        if (coversAll(subtable, at) && coversAll(subtable, at) && coversAll(subtable, at)) {
          reachRecords(at + 2, table_.u16(at));
        }
        return;
      }
      default:
        return;
    }
  }

  Table table_;
  bool substitutes_;
  const std::vector<std::uint16_t>& glyphs_;  // ascending, each once
  std::vector<bool> taken_;
  std::vector<bool> reached_;         // by lookup index
  std::vector<std::size_t> pending_;  // offsets of lookups to look into
};

// Whether a pair of the kern table consists of the glyphs. The Apple form, which the reader does
// not look into, counts as one that does.
bool kerningActs(const FontFile& font, const std::vector<std::uint16_t>& glyphs) {
  constexpr std::uint64_t kMostPairs = 20'000'000;
  if (font->kernType != 2) return font->kernType == 1;
  std::uint64_t pairs = 0;
  const std::uint8_t* last = nullptr;
  for (std::uint32_t i = 0; i < font->kernTableCount; ++i) {
    const std::uint8_t* subtable = font->kernTables[i];
    if (subtable == nullptr || subtable == last) continue;
    last = subtable;
    const std::uint16_t coverage = readUInt16(subtable, 4);
    if (coverage > 1) continue;  // the reader serves no other kind
    const std::size_t count = readUInt16(subtable, 6);
    pairs += count;
    if (pairs > kMostPairs) return true;
    for (std::size_t k = 0; k < count; ++k) {
      const std::size_t pair = 14 + 6 * k;
      if (readInt16(subtable, pair + 4) != 0 &&
          std::binary_search(glyphs.begin(), glyphs.end(), readUInt16(subtable, pair)) &&
          std::binary_search(glyphs.begin(), glyphs.end(), readUInt16(subtable, pair + 2))) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace

std::vector<std::string> layoutInUse(const FontFile& font, std::vector<std::uint16_t> glyphs) {
  std::sort(glyphs.begin(), glyphs.end());
  glyphs.erase(std::unique(glyphs.begin(), glyphs.end()), glyphs.end());
  std::vector<std::string> tables;
  if (LayoutTable(font, tagOf("GSUB"), glyphs).acts()) tables.emplace_back("GSUB");
  if (LayoutTable(font, tagOf("GPOS"), glyphs).acts()) tables.emplace_back("GPOS");
  if (kerningActs(font, glyphs)) tables.emplace_back("kern");
  if (findTableByTag(font.get(), tagOf("fvar")) != nullptr) tables.emplace_back("fvar");
  return tables;
}

}  // namespace ulm::tools
