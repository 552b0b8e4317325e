#include "command/font/layout.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>

#include "command/font/layout_table.h"
#include "truetype/format/byte_view.h"
#include "truetype/format/directory.h"
#include "truetype/format/kern.h"
#include "truetype/format/layout.h"
#include "truetype/reader/tables.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;
using namespace ulm::truetype::format;

consteval std::uint32_t tagOf(const char (&name)[5]) { return format::tag(name); }

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

// Checks whether GSUB or GPOS of a font changes any of a set of glyphs.
class LayoutCheck {
 public:
  LayoutCheck(const FontFile& font, std::uint32_t tag, const std::vector<std::uint16_t>& glyphs)
      : table_(font, tag), substitutes_(tag == kGsubTag), glyphs_(glyphs), inSet_(emptySet()) {
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
    const std::size_t list = table_.target(0, LayoutHeader::kLookupList);
    if (index >= table_.u16(list, LookupList::kCount)) return;
    if (scheduled_.size() <= index) scheduled_.resize(index + 1);
    if (scheduled_[index]) return;
    scheduled_[index] = true;
    pending_.push_back(table_.target(list, LookupList::kLookups, index));
  }

  // Schedules the lookups of the default features.
  void scheduleFeatures() {
    const std::size_t list = table_.target(0, LayoutHeader::kFeatureList);
    const std::size_t count = table_.u16(list, FeatureList::kCount);
    for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
      const std::size_t record = list + FeatureList::kRecords.at(i);
      if (!std::binary_search(std::begin(kDefaultFeatures), std::end(kDefaultFeatures),
                              table_.u32(record, FeatureRecord::kTag))) {
        continue;
      }
      const std::size_t feature =
          LayoutTable::resolve(list, table_.u16(record, FeatureRecord::kOffset));
      const std::size_t lookups = table_.u16(feature, Feature::kLookupCount);
      for (std::size_t k = 0; k < lookups; ++k) schedule(table_.u16(feature, Feature::kLookups, k));
    }
  }

  bool lookupActs(std::size_t lookup) {
    const std::uint32_t extension =
        substitutes_ ? SubstitutionType::kExtension : PositioningType::kExtension;
    const std::size_t count = table_.u16(lookup, Lookup::kSubtableCount);
    for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
      std::uint32_t type = table_.u16(lookup, Lookup::kType);
      std::size_t subtable = table_.target(lookup, Lookup::kSubtables, i);
      if (type == extension) {
        type = table_.u16(subtable, ExtensionSubtable::kType);
        subtable += table_.u32(subtable, ExtensionSubtable::kOffset);
      }
      if (substitutes_ ? substitutionActs(type, subtable) : positioningActs(type, subtable)) {
        return true;
      }
    }
    return false;
  }

  bool substitutionActs(std::uint32_t type, std::size_t subtable) {
    switch (type) {
      case SubstitutionType::kSingle:  // the input of these three is one glyph
      case SubstitutionType::kMultiple:
      case SubstitutionType::kAlternate:
        return covers(coverageOf(subtable));
      case SubstitutionType::kLigature:
        return ligatureActs(subtable);
      case SubstitutionType::kContext:
        scheduleFromContext(subtable);
        return false;
      case SubstitutionType::kChainContext:
        scheduleFromChain(subtable);
        return false;
      case SubstitutionType::kReverseChain:
        return reverseChainActs(subtable);
      default:
        return false;
    }
  }

  bool positioningActs(std::uint32_t type, std::size_t subtable) {
    switch (type) {
      case PositioningType::kSingle:
      case PositioningType::kCursive:
        return covers(coverageOf(subtable));
      case PositioningType::kPair:
        return table_.u16(subtable, LookupSubtable::kFormat) == 1 ? glyphPairActs(subtable)
                                                                  : classPairActs(subtable);
      case PositioningType::kMarkToBase:
      case PositioningType::kMarkToLigature:
      case PositioningType::kMarkToMark:
        return covers(coverageOf(subtable)) &&
               covers(table_.target(subtable, MarkPos::kBaseCoverage));
      case PositioningType::kContext:
        scheduleFromContext(subtable);
        return false;
      case PositioningType::kChainContext:
        scheduleFromChain(subtable);
        return false;
      default:
        return false;
    }
  }

  // Returns the coverage of the first glyph of a subtable's input.
  std::size_t coverageOf(std::size_t subtable) const {
    return table_.target(subtable, LookupSubtable::kCoverage);
  }
  // Calls visit(glyph, coverage index) for each covered glyph of the set. Returns true as soon as a
  // call returns true.
  template <class Visit>
  bool anyCovered(std::size_t coverage, const Visit& visit) const {
    const std::size_t format = table_.u16(coverage, Coverage::kFormat);
    const std::size_t count = table_.u16(coverage, Coverage::kCount);
    for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
      if (format == 1) {
        const std::size_t glyph = table_.u16(coverage, Coverage::kGlyphs, i);
        if (inSet_[glyph] && visit(glyph, i)) return true;
      } else if (format == 2) {
        const std::size_t range = coverage + Coverage::kRanges.at(i);
        const std::size_t first = table_.u16(range, CoverageRange::kFirst);
        const std::size_t last = table_.u16(range, CoverageRange::kLast);
        const std::size_t index = table_.u16(range, CoverageRange::kIndex);
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
    if (table_.u16(classes, ClassDef::kFormat) == 1) {
      const std::size_t first = table_.u16(classes, ClassDef1::kFirstGlyph);
      const std::size_t count = table_.u16(classes, ClassDef1::kCount);
      if (count > 0) {
        set(first, first + count - 1,
            [&](std::size_t index) { return table_.u16(classes, ClassDef1::kClasses, index); });
      }
    } else if (table_.u16(classes, ClassDef::kFormat) == 2) {
      const std::size_t count = table_.u16(classes, ClassDef2::kCount);
      for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
        const std::size_t range = classes + ClassDef2::kRanges.at(i);
        set(table_.u16(range, ClassRange::kFirst), table_.u16(range, ClassRange::kLast),
            [&](std::size_t) { return table_.u16(range, ClassRange::kClass); });
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
    return anyCovered(coverageOf(subtable), [&](std::size_t, std::size_t index) {
      const std::size_t set = table_.target(subtable, LigatureSubtable::kSets, index);
      const std::size_t count = table_.u16(set, LigatureSet::kCount);
      for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
        const std::size_t ligature = table_.target(set, LigatureSet::kLigatures, i);
        const std::size_t components = table_.u16(ligature, Ligature::kComponentCount);
        std::size_t k = 1;
        while (k < components && inSet_[table_.u16(ligature, Ligature::kComponents, k - 1)]) ++k;
        if (components > 0 && k == components) return true;
      }
      return false;
    });
  }

  // Returns the count of values that a pair's two value records have together.
  std::size_t valueCount(std::size_t subtable) const {
    const std::uint32_t first = table_.u16(subtable, PairPos::kValueFormat1);
    const std::uint32_t second = table_.u16(subtable, PairPos::kValueFormat2);
    return static_cast<std::size_t>(std::popcount(first) + std::popcount(second));
  }
  // Returns true if one of the values is not 0.
  bool hasValue(std::size_t values, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i) {
      if (table_.u16(values, ValueRecord::kValues, i) != 0) return true;
    }
    return false;
  }

  bool glyphPairActs(std::size_t subtable) const {
    const std::size_t values = valueCount(subtable);
    const std::size_t length = ValueRecord::kValues.bytes(values);
    return anyCovered(coverageOf(subtable), [&](std::size_t, std::size_t index) {
      const std::size_t set = table_.target(subtable, PairPos1::kSets, index);
      const std::size_t count = table_.u16(set, PairSet::kCount);
      for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
        const std::size_t record = set + PairSet::record(i, length);
        if (inSet_[table_.u16(record, PairValueRecord::kSecondGlyph)] &&
            hasValue(record + PairValueRecord::kSize, values)) {
          return true;
        }
      }
      return false;
    });
  }

  bool classPairActs(std::size_t subtable) const {
    const std::size_t values = valueCount(subtable);
    const std::size_t length = ValueRecord::kValues.bytes(values);
    const std::vector<std::uint16_t> firstOf =
        classesOf(table_.target(subtable, PairPos2::kClassDef1));
    const std::vector<bool> second = classSet(table_.target(subtable, PairPos2::kClassDef2));
    const std::size_t firstCount = table_.u16(subtable, PairPos2::kClassCount1);
    const std::size_t secondCount = table_.u16(subtable, PairPos2::kClassCount2);
    std::vector<bool> seen = emptySet();
    return anyCovered(coverageOf(subtable), [&](std::size_t glyph, std::size_t) {
      const auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), glyph);
      const std::size_t row = firstOf[static_cast<std::size_t>(at - glyphs_.begin())];
      if (row >= firstCount || seen[row]) return false;
      seen[row] = true;
      for (std::size_t column = 0; column < secondCount && !table_.isExhausted(); ++column) {
        const std::size_t record = subtable + PairPos2::record(row * secondCount + column, length);
        if (second[column] && hasValue(record, values)) return true;
      }
      return false;
    });
  }

  bool reverseChainActs(std::size_t subtable) const {
    std::size_t offset = subtable + ReverseChain::kSequences;
    return covers(coverageOf(subtable)) && coversAll(subtable, offset) &&
           coversAll(subtable, offset);
  }
  // Reads a sequence of coverages. Returns true if each of them covers a glyph of the set. Moves
  // `offset` to the end of the sequence.
  bool coversAll(std::size_t base, std::size_t& offset) const {
    const std::size_t sequence = offset;
    const std::size_t count = table_.u16(sequence, LayoutSequence::kCount);
    offset += LayoutSequence::kItems.at(count);
    bool possible = true;
    for (std::size_t i = 0; i < count && possible && !table_.isExhausted(); ++i) {
      possible =
          covers(LayoutTable::resolve(base, table_.u16(sequence, LayoutSequence::kItems, i)));
    }
    return possible;
  }
  // Returns true if the first `count` glyphs or classes of an array of the record at `base` are in
  // the set.
  template <class Items>
  bool allIn(const std::vector<bool>& set, std::size_t base, Items items, std::size_t count) const {
    bool possible = true;
    for (std::size_t i = 0; i < count && possible && !table_.isExhausted(); ++i) {
      possible = set[table_.u16(base, items, i)];
    }
    return possible;
  }
  // Schedules the lookups of `count` lookup records.
  void scheduleRecords(std::size_t records, std::size_t count) {
    for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
      const std::size_t record = records + i * LookupRecord::kSize;
      schedule(table_.u16(record, LookupRecord::kLookupIndex));
    }
  }
  void scheduleRecordsOf(std::size_t chainEnd) {
    scheduleRecords(chainEnd + LookupRecords::kRecords.at(0),
                    table_.u16(chainEnd, LookupRecords::kCount));
  }

  // Calls rule(offset) for the rules of formats 1 and 2 that can apply. The rule sets are selected
  // by coverage index if `classes` is null, and otherwise by the class of the covered glyph.
  template <class Format, class RuleOf>
  void scheduleFromSets(std::size_t subtable, const std::vector<std::uint16_t>* classes,
                        const RuleOf& rule) {
    const std::size_t sets = table_.u16(subtable, Format::kSetCount);
    std::vector<bool> seen = emptySet();
    anyCovered(coverageOf(subtable), [&](std::size_t glyph, std::size_t index) {
      if (classes != nullptr) {
        const auto at = std::lower_bound(glyphs_.begin(), glyphs_.end(), glyph);
        index = (*classes)[static_cast<std::size_t>(at - glyphs_.begin())];
      }
      if (index >= sets || seen[index]) return false;
      seen[index] = true;
      const std::size_t set = table_.target(subtable, Format::kSets, index);
      const std::size_t count = table_.u16(set, RuleSet::kCount);
      for (std::size_t i = 0; i < count && !table_.isExhausted(); ++i) {
        rule(table_.target(set, RuleSet::kRules, i));
      }
      return false;
    });
  }

  void scheduleFromContext(std::size_t subtable) {
    const auto ruleWith = [this](const std::vector<bool>& set) {
      return [this, &set](std::size_t rule) {
        const std::size_t glyphs = table_.u16(rule, ContextRule::kGlyphCount);
        if (glyphs > 0 && allIn(set, rule, ContextRule::kInput, glyphs - 1)) {
          scheduleRecords(rule + ContextRule::kInput.at(glyphs - 1),
                          table_.u16(rule, ContextRule::kRecordCount));
        }
      };
    };
    switch (table_.u16(subtable, LookupSubtable::kFormat)) {
      case 1:
        return scheduleFromSets<Context1>(subtable, nullptr, ruleWith(inSet_));
      case 2: {
        const std::size_t classes = table_.target(subtable, Context2::kClassDef);
        const std::vector<std::uint16_t> classOf = classesOf(classes);
        const std::vector<bool> set = classSet(classes);
        return scheduleFromSets<Context2>(subtable, &classOf, ruleWith(set));
      }
      case 3: {
        const std::size_t glyphs = table_.u16(subtable, Context3::kGlyphCount);
        for (std::size_t i = 0; i < glyphs; ++i) {
          if (!covers(table_.target(subtable, Context3::kCoverages, i))) return;
        }
        return scheduleRecords(subtable + Context3::kCoverages.at(glyphs),
                               table_.u16(subtable, Context3::kRecordCount));
      }
      default:
        return;
    }
  }

  void scheduleFromChain(std::size_t subtable) {
    const auto ruleWith = [this](const std::vector<bool>& before, const std::vector<bool>& input,
                                 const std::vector<bool>& after) {
      return [this, &before, &input, &after](std::size_t rule) {
        std::size_t offset = rule + ChainRule::kSequences;
        // Tests a sequence and moves `offset` to its end. `omitted` glyphs are counted but not in
        // the list.
        const auto isPossible = [this, &offset](const std::vector<bool>& set, std::size_t omitted) {
          const std::size_t sequence = offset;
          const std::size_t count = table_.u16(sequence, LayoutSequence::kCount);
          if (count < omitted) return false;
          offset += LayoutSequence::kItems.at(count - omitted);
          return allIn(set, sequence, LayoutSequence::kItems, count - omitted);
        };
        if (isPossible(before, 0) && isPossible(input, 1) && isPossible(after, 0)) {
          scheduleRecordsOf(offset);
        }
      };
    };
    switch (table_.u16(subtable, LookupSubtable::kFormat)) {
      case 1:
        return scheduleFromSets<Chain1>(subtable, nullptr, ruleWith(inSet_, inSet_, inSet_));
      case 2: {
        const std::vector<bool> before =
            classSet(table_.target(subtable, Chain2::kBacktrackClassDef));
        const std::size_t classes = table_.target(subtable, Chain2::kInputClassDef);
        const std::vector<std::uint16_t> classOf = classesOf(classes);
        const std::vector<bool> input = classSet(classes);
        const std::vector<bool> after =
            classSet(table_.target(subtable, Chain2::kLookaheadClassDef));
        return scheduleFromSets<Chain2>(subtable, &classOf, ruleWith(before, input, after));
      }
      case 3: {
        std::size_t offset = subtable + Chain3::kSequences;
        if (coversAll(subtable, offset) && coversAll(subtable, offset) &&
            coversAll(subtable, offset)) {
          scheduleRecordsOf(offset);
        }
        return;
      }
      default:
        return;
    }
  }

  LayoutTable table_;
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
    const std::uint16_t coverage =
        FixedView<KernSubtable, KernSubtable::kCoverage.kEnd>::vouched(subtable).get(
            KernSubtable::kCoverage);
    if (coverage > KernSubtable::kHorizontal) continue;  // the reader supports no other kind
    const std::size_t count =
        FixedView<KernSubtable, KernSubtable::kPairCount.kEnd>::vouched(subtable).get(
            KernSubtable::kPairCount);
    pairs += count;
    if (pairs > kMaxPairs) return true;
    for (std::size_t k = 0; k < count; ++k) {
      // The reader tested that the pairs of a subtable of this kind are in the image.
      const auto pair = FixedView<KernPair>::vouched(subtable + KernSubtable::kPairs.at(k));
      const std::uint32_t key = pair.get(KernPair::kKey);
      if (pair.get(KernPair::kValue) != 0 &&
          std::binary_search(glyphs.begin(), glyphs.end(), key >> 16) &&
          std::binary_search(glyphs.begin(), glyphs.end(), key & 0xFFFF)) {
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
  if (LayoutCheck(font, kGsubTag, glyphs).acts()) tables.emplace_back("GSUB");
  if (LayoutCheck(font, kGposTag, glyphs).acts()) tables.emplace_back("GPOS");
  if (kerningApplies(font, glyphs)) tables.emplace_back("kern");
  if (findTableByTag(font.get(), kFvarTag) != nullptr) tables.emplace_back("fvar");
  return tables;
}

}  // namespace ulm::tools
