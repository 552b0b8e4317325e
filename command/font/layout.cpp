#include "command/font/layout.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>

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

// The features that a browser applies by default, for all scripts, in ascending order. `locl` is
// not among them: it depends on the language, which a list of characters does not give.
constexpr std::uint32_t kDefaultFeatures[] = {
    tagOf("abvf"), tagOf("abvm"), tagOf("abvs"), tagOf("akhn"), tagOf("blwf"), tagOf("blwm"),
    tagOf("blws"), tagOf("calt"), tagOf("ccmp"), tagOf("cfar"), tagOf("cjct"), tagOf("clig"),
    tagOf("curs"), tagOf("dist"), tagOf("fin2"), tagOf("fin3"), tagOf("fina"), tagOf("half"),
    tagOf("haln"), tagOf("init"), tagOf("isol"), tagOf("kern"), tagOf("liga"), tagOf("ljmo"),
    tagOf("mark"), tagOf("med2"), tagOf("medi"), tagOf("mkmk"), tagOf("mset"), tagOf("nukt"),
    tagOf("pref"), tagOf("pres"), tagOf("pstf"), tagOf("psts"), tagOf("rclt"), tagOf("rkrf"),
    tagOf("rlig"), tagOf("rphf"), tagOf("rvrn"), tagOf("stch"), tagOf("tjmo"), tagOf("vatu"),
    tagOf("vjmo")};

// A copy of a table. A read beyond its end returns 0. The number of reads is bounded, because in a
// table whose parts overlap the work could grow with the square of its size or worse; every read
// after the bound is reached returns 0.
class Table {
 public:
  Table(const FontFile& font, std::uint32_t tag)
      : bytes_(takeBlock(copyTableByTag(font.get(), tag, &length_))) {
    if (bytes_ == nullptr) length_ = 0;
  }
  bool empty() const { return length_ == 0; }
  bool isExhausted() const { return work_ > kMaxWork; }
  // Counts work that reads no bytes.
  void charge(std::uint64_t work) const { work_ += work; }
  std::uint32_t u16(std::size_t offset) const {
    if (++work_ > kMaxWork || length_ < 2 || offset > length_ - 2) return 0;
    return readUInt16(bytes_.get(), offset);
  }
  std::uint32_t u32(std::size_t offset) const { return u16(offset) << 16 | u16(offset + 2); }
  // Reads the 16-bit offset at `fieldOffset`, which is relative to `base`, and returns the offset
  // in the table. For the null offset 0 the result is beyond the end of the table.
  std::size_t target(std::size_t base, std::size_t fieldOffset) const {
    const std::size_t offset = u16(fieldOffset);
    return offset == 0 ? kBeyondEnd : base + offset;
  }

 private:
  static constexpr std::size_t kBeyondEnd = SIZE_MAX / 2;
  static constexpr std::uint64_t kMaxWork = 20'000'000;
  std::uint32_t length_ = 0;
  std::unique_ptr<std::uint8_t[], FreeBlock> bytes_;
  mutable std::uint64_t work_ = 0;
};

// Checks whether GSUB or GPOS of a font changes any of a set of glyphs.
class LayoutTable {
 public:
  LayoutTable(const FontFile& font, std::uint32_t tag, const std::vector<std::uint16_t>& glyphs)
      : table_(font, tag), substitutes_(tag == tagOf("GSUB")), glyphs_(glyphs), inSet_(emptySet()) {
    for (const std::uint16_t glyph : glyphs) inSet_[glyph] = true;
  }

  // Returns true if a lookup of a default feature can change the glyphs, one of them or several
  // together. A contextual lookup counts if its context is possible with the glyphs and one of the
  // lookups that it calls can change them.
  bool acts() {
    if (table_.empty()) return false;
    scheduleFeatures();
    while (!pending_.empty() && !table_.isExhausted()) {
      const std::size_t lookup = pending_.back();
      pending_.pop_back();
      if (lookupActs(lookup)) return true;
    }
    return table_.isExhausted();  // a table that takes too much work counts as used
  }

 private:
  static constexpr std::size_t kGlyphs = 0x10000;

  // Returns an empty set of glyphs or classes.
  std::vector<bool> emptySet() const {
    table_.charge(kGlyphs / 64);
    return std::vector<bool>(kGlyphs);
  }

  // Schedules a lookup, unless it was scheduled before.
  void schedule(std::size_t index) {
    const std::size_t list = table_.target(0, 8);
    if (index >= table_.u16(list)) return;
    if (scheduled_.size() <= index) scheduled_.resize(index + 1);
    if (scheduled_[index]) return;
    scheduled_[index] = true;
    pending_.push_back(table_.target(list, list + 2 + 2 * index));
  }

  // Schedules the lookups of the default features.
  void scheduleFeatures() {
    const std::size_t list = table_.target(0, 6);
    const std::size_t count = table_.u16(list);
    for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
      const std::size_t entry = list + 2 + 6 * i;
      if (!std::binary_search(std::begin(kDefaultFeatures), std::end(kDefaultFeatures),
                              table_.u32(entry))) {
        continue;
      }
      const std::size_t feature = table_.target(list, entry + 4);
      const std::size_t lookups = table_.u16(feature + 2);
      for (std::size_t k = 0; k < lookups; ++k) schedule(table_.u16(feature + 4 + 2 * k));
    }
  }

  bool lookupActs(std::size_t lookup) {
    const std::uint32_t extension = substitutes_ ? 7 : 9;
    const std::size_t count = table_.u16(lookup + 4);
    for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
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
      case 1:  // single, multiple, alternate: the input is one glyph
      case 2:
      case 3:
        return covers(table_.target(subtable, subtable + 2));
      case 4:
        return ligatureActs(subtable);
      case 5:
        scheduleFromContext(subtable);
        return false;
      case 6:
        scheduleFromChain(subtable);
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
      case 3:  // cursive attachment
        return covers(table_.target(subtable, subtable + 2));
      case 2:
        return table_.u16(subtable) == 1 ? glyphPairActs(subtable) : classPairActs(subtable);
      case 4:  // mark to base, to ligature, to mark
      case 5:
      case 6:
        return covers(table_.target(subtable, subtable + 2)) &&
               covers(table_.target(subtable, subtable + 4));
      case 7:
        scheduleFromContext(subtable);
        return false;
      case 8:
        scheduleFromChain(subtable);
        return false;
      default:
        return false;
    }
  }

  // Calls visit(glyph, coverage index) for each covered glyph of the set. Returns true as soon as a
  // call returns true.
  template <class Visit>
  bool anyCovered(std::size_t coverage, const Visit& visit) const {
    const std::size_t format = table_.u16(coverage), count = table_.u16(coverage + 2);
    for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
      if (format == 1) {
        const std::size_t glyph = table_.u16(coverage + 4 + 2 * i);
        if (inSet_[glyph] && visit(glyph, i)) return true;
      } else if (format == 2) {
        const std::size_t range = coverage + 4 + 6 * i;
        const std::size_t first = table_.u16(range), last = table_.u16(range + 2);
        const std::size_t index = table_.u16(range + 4);
        for (auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), first);
             at != glyphs_.end() && *at <= last && !table_.isExhausted(); ++at) {
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

  // Returns the class of each glyph of the set, in the order of glyphs_.
  std::vector<std::uint16_t> classesOf(std::size_t classes) const {
    table_.charge(glyphs_.size() / 8);
    std::vector<std::uint16_t> found(glyphs_.size());
    const auto set = [&](std::size_t first, std::size_t last, const auto& classOf) {
      for (auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), first);
           at != glyphs_.end() && *at <= last && !table_.isExhausted(); ++at) {
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
      for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
        const std::size_t range = classes + 4 + 6 * i;
        set(table_.u16(range), table_.u16(range + 2),
            [&](std::size_t) { return table_.u16(range + 4); });
      }
    }
    return found;
  }
  // Returns the set of these classes.
  std::vector<bool> classSet(std::size_t classes) const {
    std::vector<bool> set = emptySet();
    for (const std::uint16_t found : classesOf(classes)) set[found] = true;
    return set;
  }

  bool ligatureActs(std::size_t subtable) const {
    return anyCovered(table_.target(subtable, subtable + 2), [&](std::size_t, std::size_t index) {
      const std::size_t set = table_.target(subtable, subtable + 6 + 2 * index);
      const std::size_t count = table_.u16(set);
      for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
        const std::size_t ligature = table_.target(set, set + 2 + 2 * i);
        const std::size_t components = table_.u16(ligature + 2);
        std::size_t k = 1;
        while (k < components && inSet_[table_.u16(ligature + 2 + 2 * k)]) ++k;
        if (components > 0 && k == components) return true;
      }
      return false;
    });
  }

  // Returns the length in bytes of a value record.
  static std::size_t valueLength(std::uint32_t format) {
    std::size_t length = 0;
    for (; format != 0; format &= format - 1) length += 2;
    return length;
  }
  // Returns true if a value of the record is not 0.
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
      for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
        const std::size_t record = set + 2 + (2 + length) * i;
        if (inSet_[table_.u16(record)] && hasValue(record + 2, length)) return true;
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
      for (std::size_t column = 0; column < secondCount && !table_.isExhausted(); ++column) {
        const std::size_t record = subtable + 16 + (row * secondCount + column) * length;
        if (second[column] && hasValue(record, length)) return true;
      }
      return false;
    });
  }

  bool reverseChainActs(std::size_t subtable) const {
    std::size_t offset = subtable + 4;
    return covers(table_.target(subtable, subtable + 2)) && coversAll(subtable, offset) &&
           coversAll(subtable, offset);
  }
  // Reads a count and that many coverages. Returns true if each of them covers a glyph of the set.
  // Moves `offset` to the end of the list.
  bool coversAll(std::size_t base, std::size_t& offset) const {
    const std::size_t count = table_.u16(offset);
    offset += 2;
    bool possible = true;
    for (std::size_t i = 0; i < count && possible && !table_.isExhausted(); ++i) {
      possible = covers(table_.target(base, offset + 2 * i));
    }
    offset += 2 * count;
    return possible;
  }
  // Reads `count` glyphs or classes. Returns true if all are in the set. Moves `offset` to the end
  // of the list.
  bool allIn(const std::vector<bool>& set, std::size_t count, std::size_t& offset) const {
    bool possible = true;
    for (std::size_t i = 0; i < count && possible && !table_.isExhausted(); ++i) {
      possible = set[table_.u16(offset + 2 * i)];
    }
    offset += 2 * count;
    return possible;
  }
  // Schedules the lookups of `count` lookup records.
  void scheduleRecords(std::size_t records, std::size_t count) {
    for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
      schedule(table_.u16(records + 4 * i + 2));
    }
  }

  // Calls rule(offset) for the rules of formats 1 and 2 that can apply. The rule sets are selected
  // by coverage index if `classes` is null, and otherwise by the class of the covered glyph.
  template <class RuleOf>
  void scheduleFromSets(std::size_t subtable, std::size_t countOffset,
                        const std::vector<std::uint16_t>* classes, const RuleOf& rule) {
    const std::size_t sets = table_.u16(countOffset);
    std::vector<bool> seen = emptySet();
    anyCovered(table_.target(subtable, subtable + 2), [&](std::size_t glyph, std::size_t index) {
      if (classes != nullptr) {
        const auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), glyph);
        index = (*classes)[static_cast<std::size_t>(at - glyphs_.begin())];
      }
      if (index >= sets || seen[index]) return false;
      seen[index] = true;
      const std::size_t set = table_.target(subtable, countOffset + 2 + 2 * index);
      const std::size_t count = table_.u16(set);
      for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
        rule(table_.target(set, set + 2 + 2 * i));
      }
      return false;
    });
  }

  void scheduleFromContext(std::size_t subtable) {
    const auto ruleWith = [this](const std::vector<bool>& set) {
      return [this, &set](std::size_t rule) {
        const std::size_t glyphs = table_.u16(rule);
        std::size_t offset = rule + 4;
        if (glyphs > 0 && allIn(set, glyphs - 1, offset))
          scheduleRecords(offset, table_.u16(rule + 2));
      };
    };
    switch (table_.u16(subtable)) {
      case 1:
        return scheduleFromSets(subtable, subtable + 4, nullptr, ruleWith(inSet_));
      case 2: {
        const std::size_t classes = table_.target(subtable, subtable + 4);
        const std::vector<std::uint16_t> classOf = classesOf(classes);
        const std::vector<bool> set = classSet(classes);
        return scheduleFromSets(subtable, subtable + 6, &classOf, ruleWith(set));
      }
      case 3: {
        const std::size_t glyphs = table_.u16(subtable + 2);
        for (std::size_t i = 0; i < glyphs; ++i) {
          if (!covers(table_.target(subtable, subtable + 6 + 2 * i))) return;
        }
        return scheduleRecords(subtable + 6 + 2 * glyphs, table_.u16(subtable + 4));
      }
      default:
        return;
    }
  }

  void scheduleFromChain(std::size_t subtable) {
    const auto ruleWith = [this](const std::vector<bool>& before, const std::vector<bool>& input,
                                 const std::vector<bool>& after) {
      return [this, &before, &input, &after](std::size_t rule) {
        std::size_t offset = rule + 2;
        if (!allIn(before, table_.u16(rule), offset)) return;
        const std::size_t glyphs = table_.u16(offset);
        offset += 2;
        if (glyphs == 0 || !allIn(input, glyphs - 1, offset)) return;
        const std::size_t following = table_.u16(offset);
        offset += 2;
        if (allIn(after, following, offset)) scheduleRecords(offset + 2, table_.u16(offset));
      };
    };
    switch (table_.u16(subtable)) {
      case 1:
        return scheduleFromSets(subtable, subtable + 4, nullptr, ruleWith(inSet_, inSet_, inSet_));
      case 2: {
        const std::vector<bool> before = classSet(table_.target(subtable, subtable + 4));
        const std::size_t classes = table_.target(subtable, subtable + 6);
        const std::vector<std::uint16_t> classOf = classesOf(classes);
        const std::vector<bool> input = classSet(classes);
        const std::vector<bool> after = classSet(table_.target(subtable, subtable + 8));
        return scheduleFromSets(subtable, subtable + 10, &classOf, ruleWith(before, input, after));
      }
      case 3: {
        std::size_t offset = subtable + 2;
        if (coversAll(subtable, offset) && coversAll(subtable, offset) &&
            coversAll(subtable, offset)) {
          scheduleRecords(offset + 2, table_.u16(offset));
        }
        return;
      }
      default:
        return;
    }
  }

  Table table_;
  bool substitutes_;
  const std::vector<std::uint16_t>& glyphs_;  // ascending and different
  std::vector<bool> inSet_;                   // by glyph
  std::vector<bool> scheduled_;               // by lookup index
  std::vector<std::size_t> pending_;  // offsets of scheduled lookups that were not checked yet
};

// Returns true if a pair of the kern table consists of two of the glyphs. The Apple format, which
// the reader does not support, counts as one that has such a pair.
bool kerningApplies(const FontFile& font, const std::vector<std::uint16_t>& glyphs) {
  constexpr std::uint64_t kMaxPairs = 20'000'000;
  if (font->kernType != 2) return font->kernType == 1;
  std::uint64_t pairs = 0;
  const std::uint8_t* last = nullptr;
  for (std::uint32_t i = 0; i < font->kernTableCount; ++i) {
    const std::uint8_t* subtable = font->kernTables[i];
    if (subtable == nullptr || subtable == last) continue;
    last = subtable;
    const std::uint16_t coverage = readUInt16(subtable, 4);
    if (coverage > 1) continue;  // the reader supports no other kind
    const std::size_t count = readUInt16(subtable, 6);
    pairs += count;
    if (pairs > kMaxPairs) return true;
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
  if (kerningApplies(font, glyphs)) tables.emplace_back("kern");
  if (findTableByTag(font.get(), tagOf("fvar")) != nullptr) tables.emplace_back("fvar");
  return tables;
}

}  // namespace ulm::tools
