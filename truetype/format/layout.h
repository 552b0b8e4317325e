// The GSUB and GPOS tables as far as it takes to know which glyphs they act on. Offsets are of 16
// bits unless noted, and each counts from the start of the structure that has it; 0 is none.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct LayoutHeader {
  static constexpr Field<LayoutHeader, std::uint32_t, 0> kVersion{};
  static constexpr Field<LayoutHeader, std::uint16_t, 4> kScriptList{};   // offset
  static constexpr Field<LayoutHeader, std::uint16_t, 6> kFeatureList{};  // offset
  static constexpr Field<LayoutHeader, std::uint16_t, 8> kLookupList{};   // offset
};

struct FeatureRecord {
  static constexpr std::size_t kSize = 6;
  static constexpr Field<FeatureRecord, std::uint32_t, 0> kTag{};
  static constexpr Field<FeatureRecord, std::uint16_t, 4> kOffset{};  // from the feature list
};
struct FeatureList {
  static constexpr Field<FeatureList, std::uint16_t, 0> kCount{};
  static constexpr Array<FeatureList, FeatureRecord, 2> kRecords{};
};
struct Feature {
  static constexpr Field<Feature, std::uint16_t, 0> kParams{};  // offset
  static constexpr Field<Feature, std::uint16_t, 2> kLookupCount{};
  static constexpr Array<Feature, std::uint16_t, 4> kLookups{};  // indices in the lookup list
};

struct LookupList {
  static constexpr Field<LookupList, std::uint16_t, 0> kCount{};
  static constexpr Array<LookupList, std::uint16_t, 2> kLookups{};  // offsets
};
struct Lookup {
  static constexpr Field<Lookup, std::uint16_t, 0> kType{};
  static constexpr Field<Lookup, std::uint16_t, 2> kFlag{};
  static constexpr Field<Lookup, std::uint16_t, 4> kSubtableCount{};
  static constexpr Array<Lookup, std::uint16_t, 6> kSubtables{};  // offsets
};

// The types of lookups.
struct SubstitutionType {
  static constexpr std::uint16_t kSingle = 1, kMultiple = 2, kAlternate = 3, kLigature = 4;
  static constexpr std::uint16_t kContext = 5, kChainContext = 6, kExtension = 7;
  static constexpr std::uint16_t kReverseChain = 8;
};
struct PositioningType {
  static constexpr std::uint16_t kSingle = 1, kPair = 2, kCursive = 3;
  static constexpr std::uint16_t kMarkToBase = 4, kMarkToLigature = 5, kMarkToMark = 6;
  static constexpr std::uint16_t kContext = 7, kChainContext = 8, kExtension = 9;
};

// What a subtable begins with: the format, and the coverage of the first glyph of its input. The
// contexts and chains of format 3 and the extensions have the format alone.
struct LookupSubtable {
  static constexpr Field<LookupSubtable, std::uint16_t, 0> kFormat{};
  static constexpr Field<LookupSubtable, std::uint16_t, 2> kCoverage{};  // offset
};

// A subtable that is further away than 16 bits can express.
struct ExtensionSubtable {
  static constexpr Field<ExtensionSubtable, std::uint16_t, 2> kType{};
  static constexpr Field<ExtensionSubtable, std::uint32_t, 4> kOffset{};
};

// A set of glyphs, each of which has an index. Format 1 lists glyphs, format 2 ranges.
struct CoverageRange {
  static constexpr std::size_t kSize = 6;
  static constexpr Field<CoverageRange, std::uint16_t, 0> kFirst{};
  static constexpr Field<CoverageRange, std::uint16_t, 2> kLast{};
  static constexpr Field<CoverageRange, std::uint16_t, 4> kIndex{};  // of the first glyph
};
struct Coverage {
  static constexpr Field<Coverage, std::uint16_t, 0> kFormat{};
  static constexpr Field<Coverage, std::uint16_t, 2> kCount{};
  static constexpr Array<Coverage, std::uint16_t, 4> kGlyphs{};  // of format 1
  static constexpr Array<Coverage, CoverageRange, 4> kRanges{};  // of format 2
};

// The classes of glyphs; a glyph that is not listed has class 0.
struct ClassDef {
  static constexpr Field<ClassDef, std::uint16_t, 0> kFormat{};
};
struct ClassDef1 {
  static constexpr Field<ClassDef1, std::uint16_t, 2> kFirstGlyph{};
  static constexpr Field<ClassDef1, std::uint16_t, 4> kCount{};
  static constexpr Array<ClassDef1, std::uint16_t, 6> kClasses{};
};
struct ClassRange {
  static constexpr std::size_t kSize = 6;
  static constexpr Field<ClassRange, std::uint16_t, 0> kFirst{};
  static constexpr Field<ClassRange, std::uint16_t, 2> kLast{};
  static constexpr Field<ClassRange, std::uint16_t, 4> kClass{};
};
struct ClassDef2 {
  static constexpr Field<ClassDef2, std::uint16_t, 2> kCount{};
  static constexpr Array<ClassDef2, ClassRange, 4> kRanges{};
};

// Ligatures, in sets by the coverage index of their first glyph.
struct LigatureSubtable {
  static constexpr Field<LigatureSubtable, std::uint16_t, 4> kSetCount{};
  static constexpr Array<LigatureSubtable, std::uint16_t, 6> kSets{};  // offsets
};
struct LigatureSet {
  static constexpr Field<LigatureSet, std::uint16_t, 0> kCount{};
  static constexpr Array<LigatureSet, std::uint16_t, 2> kLigatures{};  // offsets
};
struct Ligature {
  static constexpr Field<Ligature, std::uint16_t, 0> kGlyph{};
  static constexpr Field<Ligature, std::uint16_t, 2> kComponentCount{};  // the first included
  static constexpr Array<Ligature, std::uint16_t, 4> kComponents{};      // from the second on
};

// A value record has a number of 16 bits for each bit that is set in its format.
struct ValueRecord {
  static constexpr Array<ValueRecord, std::uint16_t, 0> kValues{};
};

// The adjustment of pairs of glyphs.
struct PairPos {
  static constexpr Field<PairPos, std::uint16_t, 4> kValueFormat1{};
  static constexpr Field<PairPos, std::uint16_t, 6> kValueFormat2{};
};
struct PairPos1 {
  static constexpr Field<PairPos1, std::uint16_t, 8> kSetCount{};
  static constexpr Array<PairPos1, std::uint16_t, 10> kSets{};  // offsets, by coverage index
};
// The second glyph of a pair, which two value records follow.
struct PairValueRecord {
  static constexpr std::size_t kSize = 2;  // without the values
  static constexpr Field<PairValueRecord, std::uint16_t, 0> kSecondGlyph{};
};
struct PairSet {
  static constexpr std::size_t kSize = 2;  // records follow
  static constexpr Field<PairSet, std::uint16_t, 0> kCount{};
  // The offset of record `index` where both value records have `valueBytes` together.
  static constexpr std::size_t record(std::size_t index, std::size_t valueBytes) noexcept {
    return kSize + (PairValueRecord::kSize + valueBytes) * index;
  }
};
struct PairPos2 {
  static constexpr std::size_t kSize = 16;                           // the value records follow
  static constexpr Field<PairPos2, std::uint16_t, 8> kClassDef1{};   // offset
  static constexpr Field<PairPos2, std::uint16_t, 10> kClassDef2{};  // offset
  static constexpr Field<PairPos2, std::uint16_t, 12> kClassCount1{};
  static constexpr Field<PairPos2, std::uint16_t, 14> kClassCount2{};
  // The offset of the value records of pair `index`, which is the first class times kClassCount2
  // plus the second class.
  static constexpr std::size_t record(std::size_t index, std::size_t valueBytes) noexcept {
    return kSize + valueBytes * index;
  }
};

// The two glyphs that a mark is attached by: the mark, and the base, the ligature or another mark.
struct MarkPos {
  static constexpr Field<MarkPos, std::uint16_t, 4> kBaseCoverage{};  // offset
};

// Which lookup a rule applies to which glyph of its input.
struct LookupRecord {
  static constexpr std::size_t kSize = 4;
  static constexpr Field<LookupRecord, std::uint16_t, 0> kGlyphIndex{};
  static constexpr Field<LookupRecord, std::uint16_t, 2> kLookupIndex{};
};

// A set of rules of a context or chain.
struct RuleSet {
  static constexpr Field<RuleSet, std::uint16_t, 0> kCount{};
  static constexpr Array<RuleSet, std::uint16_t, 2> kRules{};  // offsets
};

// Contexts: format 1 has rules of glyphs, in sets by coverage index; format 2 rules of classes, in
// sets by the class of the first glyph; format 3 one rule of coverages.
struct Context1 {
  static constexpr Field<Context1, std::uint16_t, 4> kSetCount{};
  static constexpr Array<Context1, std::uint16_t, 6> kSets{};  // offsets
};
struct Context2 {
  static constexpr Field<Context2, std::uint16_t, 4> kClassDef{};  // offset
  static constexpr Field<Context2, std::uint16_t, 6> kSetCount{};
  static constexpr Array<Context2, std::uint16_t, 8> kSets{};  // offsets
};
struct Context3 {
  static constexpr Field<Context3, std::uint16_t, 2> kGlyphCount{};
  static constexpr Field<Context3, std::uint16_t, 4> kRecordCount{};
  static constexpr Array<Context3, std::uint16_t, 6>
      kCoverages{};  // offsets; lookup records follow
};
struct ContextRule {
  static constexpr Field<ContextRule, std::uint16_t, 0> kGlyphCount{};  // the first one included
  static constexpr Field<ContextRule, std::uint16_t, 2> kRecordCount{};
  // Glyphs or classes, from the second on; lookup records follow.
  static constexpr Array<ContextRule, std::uint16_t, 4> kInput{};
};

// Chains: contexts with glyphs before and after the input.
struct Chain1 {
  static constexpr Field<Chain1, std::uint16_t, 4> kSetCount{};
  static constexpr Array<Chain1, std::uint16_t, 6> kSets{};  // offsets
};
struct Chain2 {
  static constexpr Field<Chain2, std::uint16_t, 4> kBacktrackClassDef{};  // offset
  static constexpr Field<Chain2, std::uint16_t, 6> kInputClassDef{};      // offset
  static constexpr Field<Chain2, std::uint16_t, 8> kLookaheadClassDef{};  // offset
  static constexpr Field<Chain2, std::uint16_t, 10> kSetCount{};
  static constexpr Array<Chain2, std::uint16_t, 12> kSets{};  // offsets
};

// A count and so many glyphs, classes or offsets of coverages. The count of a chain rule's input
// includes the first glyph, which is not in the list.
struct LayoutSequence {
  static constexpr Field<LayoutSequence, std::uint16_t, 0> kCount{};
  static constexpr Array<LayoutSequence, std::uint16_t, 2> kItems{};
};
// The lookup records at the end of a chain.
struct LookupRecords {
  static constexpr Field<LookupRecords, std::uint16_t, 0> kCount{};
  static constexpr Array<LookupRecords, LookupRecord, 2> kRecords{};
};

// Where the sequences begin, one after the other: of a rule and of format 3 those of the backtrack,
// the input and the lookahead, and lookup records at the end; of a reverse chain those of the
// backtrack and the lookahead, and the substitutes.
struct ChainRule {
  static constexpr std::size_t kSequences = 0;
};
struct Chain3 {
  static constexpr std::size_t kSequences = 2;
};
struct ReverseChain {
  static constexpr std::size_t kSequences = 4;
};

}  // namespace ulm::truetype::format
