#include "command/clip_document.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

namespace ulm::tools {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Returns true if the number of the text is below 1 in magnitude. The power of ten of the first
// digit that is not 0 decides, so any number of digits is judged exactly.
bool isBelowOne(std::string_view number) {
  if (number.front() == '-') number.remove_prefix(1);
  const std::size_t exponentMark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, exponentMark);
  const std::size_t first = digits.find_first_of("123456789");
  if (first == digits.npos) return true;
  const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
  const auto index = static_cast<std::int64_t>(first);
  std::string_view exponent = number.substr(std::min(exponentMark + 1, number.size()));
  const bool negative = !exponent.empty() && exponent.front() == '-';
  if (!exponent.empty() && !isDigit(exponent.front())) exponent.remove_prefix(1);
  constexpr std::int64_t kMaxPower = std::int64_t{1} << 56;  // no text has that many digits
  std::int64_t power = 0;
  for (const char digit : exponent) {
    if (power < kMaxPower) power = 10 * power + (digit - '0');
  }
  return (index < point ? point - index - 1 : point - index) + (negative ? -power : power) < 0;
}

// Returns the Real that is nearest to the number of the text, or nothing if it is too large. A
// number too small for Real becomes 0 with its sign.
template <class Real>
std::optional<Real> valueOf(std::string_view digits) {
  Real value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value);
  if (stop != end) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    if (!isBelowOne(digits)) return std::nullopt;
    return digits.front() == '-' ? -Real(0) : Real(0);
  }
  return value;
}

class JsonReader {
 public:
  explicit JsonReader(std::string_view text) : text_(text) {}

  template <class Real>
  ClipDocument<Real> read() {
    ClipDocument<Real> document;
    expect('{', "an object");
    if (!take('}')) {
      do {
        readMember(document);
      } while (take(','));
      expect('}', "',' or '}'");
    }
    skipBlanks();
    if (offset_ != text_.size()) fail("end of input");
    document.headings = document.segments.has_value();
    return document;
  }

 private:
  [[noreturn]] void fail(const std::string& expected) const {
    throw ClipInputError(text_, offset_, expected + " expected");
  }
  void skipBlanks() { offset_ = std::min(text_.find_first_not_of(kBlanks, offset_), text_.size()); }
  bool take(char c) {
    skipBlanks();
    if (offset_ == text_.size() || text_[offset_] != c) return false;
    ++offset_;
    return true;
  }
  void expect(char c, const char* what) {
    if (!take(c)) fail(what);
  }
  bool takeWord(std::string_view word) {
    skipBlanks();
    if (text_.substr(offset_, word.size()) != word) return false;
    offset_ += word.size();
    return true;
  }

  template <class Real>
  void readMember(ClipDocument<Real>& document) {
    skipBlanks();
    const std::size_t start = offset_;
    const bool polygons = takeWord("\"polygons\"");
    if (!polygons && !takeWord("\"segments\"")) fail("\"polygons\" or \"segments\"");
    std::optional<ClipShapes<Real>>& shapes = polygons ? document.polygons : document.segments;
    if (shapes) throw ClipInputError(text_, start, "the key occurs twice");
    shapes.emplace();
    expect(':', "':'");
    expect('[', "a list");
    if (take(']')) return;
    do {
      shapes->push_back(readShape<Real>(polygons));
    } while (take(','));
    expect(']', "',' or ']'");
  }

  template <class Real>
  std::optional<ClipPoints<Real>> readShape(bool polygon) {
    if (takeWord("null")) return std::nullopt;
    ClipPoints<Real> points;
    expect('[', polygon ? "a list of vertices or null" : "a list of two vertices or null");
    if (polygon && take(']')) return points;
    do {
      points.push_back(readPoint<Real>());
    } while ((polygon || points.size() < 2) && take(','));
    if (!polygon && points.size() != 2) fail("a second vertex");
    expect(']', polygon ? "',' or ']'" : "']' after two vertices");
    return points;
  }

  template <class Real>
  std::array<Real, 4> readPoint() {
    std::array<Real, 4> point;
    expect('[', "a vertex, [x, y, z, w],");
    for (std::size_t i = 0; i < 4; ++i) {
      if (i != 0) expect(',', "',' and four numbers");
      point[i] = readNumber<Real>();
    }
    expect(']', "']' after four numbers");
    return point;
  }

  template <class Real>
  Real readNumber() {
    skipBlanks();
    const std::size_t start = offset_;
    const auto digits = [&] {
      const std::size_t first = offset_;
      while (offset_ < text_.size() && isDigit(text_[offset_])) ++offset_;
      if (offset_ == first) fail(first == start ? "a number" : "a digit");
    };
    const auto takeAny = [&](std::string_view any) {
      const bool found = offset_ < text_.size() && any.find(text_[offset_]) != any.npos;
      if (found) ++offset_;
      return found;
    };
    takeAny("-");
    if (!takeAny("0")) digits();
    if (takeAny(".")) digits();
    if (takeAny("eE")) {
      takeAny("+-");
      digits();
    }
    const auto value = valueOf<Real>(text_.substr(start, offset_ - start));
    if (!value) throw ClipInputError(text_, start, "number too large");
    return *value;
  }

  std::string_view text_;
  std::size_t offset_ = 0;
};

template <class Real>
class TextReader {
 public:
  TextReader(std::string_view text, bool segments) : text_(text), segments_(segments) {}

  ClipDocument<Real> read() {
    while (offset_ < text_.size()) {
      const std::size_t newline = std::min(text_.find('\n', offset_), text_.size());
      const std::size_t end = firstOf("#", newline);  // a comment is skipped
      skipBlanks(end);
      if (offset_ < end) {
        readLine(end);
      } else if (end == newline) {
        closeGroup();
      }
      offset_ = std::min(newline + 1, text_.size());
    }
    closeGroup();
    if (!document_.polygons && !document_.segments) shapes();
    document_.text = true;
    return std::move(document_);
  }

 private:
  [[noreturn]] void fail(const char* message) const {
    throw ClipInputError(text_, offset_, message);
  }
  // Each search ends at the end of the line. A search to the end of the text would take quadratic
  // time.
  std::size_t firstOf(std::string_view any, std::size_t end) const {
    return std::min(text_.substr(0, end).find_first_of(any, offset_), end);
  }
  void skipBlanks(std::size_t end) {
    offset_ = std::min(text_.substr(0, end).find_first_not_of(kBlanks, offset_), end);
  }
  std::string_view word(std::size_t end) const {
    return text_.substr(offset_, firstOf(kBlanks, end) - offset_);
  }

  // Returns the list that is being read.
  ClipShapes<Real>& shapes() {
    std::optional<ClipShapes<Real>>& list = segments_ ? document_.segments : document_.polygons;
    return list ? *list : list.emplace();
  }

  // Ends a polygon or a segment and adds it to its list.
  void closeGroup() {
    if (!groupIsOpen_) return;
    if (segments_ && group_ && group_->size() != 2) fail("a second vertex expected");
    shapes().push_back(std::move(group_));
    groupIsOpen_ = false;
  }

  void readLine(std::size_t end) {
    const std::string_view first = word(end);
    if (first == "polygons" || first == "segments") {
      closeGroup();
      segments_ = first == "segments";
      shapes();
      document_.headings = true;
      offset_ += first.size();
    } else {
      if (groupIsOpen_ && !group_) fail("a blank line expected after null");
      if (first == "null") {
        if (groupIsOpen_) fail("four numbers expected");
        group_.reset();
        offset_ += first.size();
      } else {
        if (!groupIsOpen_) group_.emplace();
        if (segments_ && group_->size() == 2) fail("a blank line expected after two vertices");
        group_->push_back(readPoint(end));
      }
      groupIsOpen_ = true;
    }
    skipBlanks(end);
    if (offset_ != end) fail("end of line expected");
  }

  std::array<Real, 4> readPoint(std::size_t end) {
    std::array<Real, 4> point;
    for (Real& coordinate : point) {
      skipBlanks(end);
      const std::string_view digits = word(end);
      Real ignored;
      const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), ignored);
      if (digits.empty() || parsed.ptr != digits.data() + digits.size()) fail("a number expected");
      const auto value = valueOf<Real>(digits);
      if (!value) fail("number too large");
      coordinate = *value;
      offset_ += digits.size();
    }
    return point;
  }

  std::string_view text_;
  bool segments_;
  std::size_t offset_ = 0;
  ClipDocument<Real> document_;
  std::optional<ClipPoints<Real>> group_;  // the shape that is being read; nothing for null
  bool groupIsOpen_ = false;
};

template <class Real>
void addPoint(std::string& out, const std::array<Real, 4>& point, std::string_view between) {
  for (std::size_t i = 0; i < 4; ++i) {
    if (i != 0) out += between;
    appendNumber(out, point[i]);
  }
}

template <class Real>
void addJsonShapes(std::string& out, const char* key, const ClipShapes<Real>& shapes) {
  out += '"';
  out += key;
  out += "\": [";
  for (std::size_t i = 0; i < shapes.size(); ++i) {
    out += i == 0 ? "\n  " : ",\n  ";
    if (!shapes[i]) {
      out += "null";
      continue;
    }
    out += '[';
    for (const std::array<Real, 4>& point : *shapes[i]) {
      for (const Real coordinate : point) {
        if (!std::isfinite(coordinate)) {
          throw std::runtime_error("number " + std::to_string(i + 1) + " of the " + key +
                                   " has a coordinate that is not finite, which JSON cannot "
                                   "represent; --text can");
        }
      }
      out += &point == shapes[i]->data() ? "[" : ", [";
      addPoint(out, point, ",");
      out += ']';
    }
    out += ']';
  }
  out += shapes.empty() ? "]" : "\n]";
}

template <class Real>
void addTextShapes(std::string& out, const char* heading, const ClipShapes<Real>& shapes) {
  if (!out.empty()) out += '\n';
  out += heading;
  for (std::size_t shape = 0; shape < shapes.size(); ++shape) {
    if (shape != 0) out += '\n';
    if (!shapes[shape]) {
      out += "null\n";
      continue;
    }
    for (const std::array<Real, 4>& point : *shapes[shape]) {
      addPoint(out, point, " ");
      out += '\n';
    }
  }
}

}  // namespace

ClipInputError::ClipInputError(std::string_view text, std::size_t offset,
                               const std::string& message)
    : std::runtime_error(message) {
  const std::string_view before = text.substr(0, offset);
  line += static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  const std::size_t newline = before.rfind('\n');
  column += newline == before.npos ? before.size() : before.size() - newline - 1;
}

template <class Real>
ClipDocument<Real> readClipDocument(std::string_view text, bool textHoldsSegments) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    text.remove_prefix(kByteOrderMark.size());
  }
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first != text.npos && text[first] == '{') return JsonReader(text).read<Real>();
  return TextReader<Real>(text, textHoldsSegments).read();
}

template ClipDocument<double> readClipDocument(std::string_view, bool);
template ClipDocument<float> readClipDocument(std::string_view, bool);

template <class Real>
void appendNumber(std::string& text, Real value) {
  if (std::isnan(value)) {  // the sign of a NaN depends on the processor
    text += "nan";
    return;
  }
  char digits[32];
  const auto written = std::to_chars(digits, digits + sizeof digits, value);
  text.append(digits, written.ptr);
}

template void appendNumber(std::string&, double);
template void appendNumber(std::string&, float);

template <class Real>
std::string writeClipJson(const ClipDocument<Real>& document) {
  std::string out = "{";
  if (document.polygons) addJsonShapes(out, "polygons", *document.polygons);
  if (document.polygons && document.segments) out += ",\n ";
  if (document.segments) addJsonShapes(out, "segments", *document.segments);
  return out + "}\n";
}

template <class Real>
std::string writeClipText(const ClipDocument<Real>& document) {
  const bool headings = document.headings || (document.polygons && document.segments);
  std::string out;
  if (document.polygons) addTextShapes(out, headings ? "polygons\n" : "", *document.polygons);
  if (document.segments) addTextShapes(out, headings ? "segments\n" : "", *document.segments);
  return out;
}

template std::string writeClipJson(const ClipDocument<double>&);
template std::string writeClipJson(const ClipDocument<float>&);
template std::string writeClipText(const ClipDocument<double>&);
template std::string writeClipText(const ClipDocument<float>&);

}  // namespace ulm::tools
