#include <algorithm>
#include <charconv>
#include <cstdint>

#include "command/clip_document.h"

namespace ulm::tools {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Whether the value of a number's text is below 1 in magnitude, by the power of ten of its first
// digit that is not zero.
bool isBelowOne(std::string_view number) {
  if (number.front() == '-') number.remove_prefix(1);
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, mark);
  const std::size_t first = digits.find_first_of("123456789");
  if (first == digits.npos) return true;
  const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
  const auto index = static_cast<std::int64_t>(first);
  std::string_view exponent = number.substr(std::min(mark + 1, number.size()));
  const bool negative = !exponent.empty() && exponent.front() == '-';
  if (!exponent.empty() && !isDigit(exponent.front())) exponent.remove_prefix(1);
  constexpr std::int64_t kFarBeyondAnyText = std::int64_t{1} << 56;
  std::int64_t power = 0;
  for (const char digit : exponent) {
    if (power < kFarBeyondAnyText) power = 10 * power + (digit - '0');
  }
  return (index < point ? point - index - 1 : point - index) + (negative ? -power : power) < 0;
}

// The value of a number's text, to the nearest Real; nothing where it is too large. A number too
// small for Real is 0 with its sign.
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
    if (at_ != text_.size()) fail("end of input");
    document.headings = document.segments.has_value();
    return document;
  }

 private:
  [[noreturn]] void fail(const std::string& expected) const {
    throw ClipInputError(text_, at_, expected + " expected");
  }
  void skipBlanks() { at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size()); }
  bool take(char c) {
    skipBlanks();
    if (at_ == text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }
  void expect(char c, const char* what) {
    if (!take(c)) fail(what);
  }
  bool takeWord(std::string_view word) {
    skipBlanks();
    if (text_.substr(at_, word.size()) != word) return false;
    at_ += word.size();
    return true;
  }

  template <class Real>
  void readMember(ClipDocument<Real>& document) {
    skipBlanks();
    const std::size_t start = at_;
    const bool polygons = takeWord("\"polygons\"");
    if (!polygons && !takeWord("\"segments\"")) fail("\"polygons\" or \"segments\"");
    std::optional<ClipShapes<Real>>& shapes = polygons ? document.polygons : document.segments;
    if (shapes) throw ClipInputError(text_, start, "this key was there before");
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
    const std::size_t start = at_;
    const auto digits = [&] {
      const std::size_t first = at_;
      while (at_ < text_.size() && isDigit(text_[at_])) ++at_;
      if (at_ == first) fail(first == start ? "a number" : "a digit");
    };
    const auto next = [&](std::string_view any) {
      const bool found = at_ < text_.size() && any.find(text_[at_]) != any.npos;
      if (found) ++at_;
      return found;
    };
    next("-");
    if (!next("0")) digits();
    if (next(".")) digits();
    if (next("eE")) {
      next("+-");
      digits();
    }
    const auto value = valueOf<Real>(text_.substr(start, at_ - start));
    if (!value) throw ClipInputError(text_, start, "number too large");
    return *value;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

template <class Real>
class TextReader {
 public:
  TextReader(std::string_view text, bool segments) : text_(text), segments_(segments) {}

  ClipDocument<Real> read() {
    while (at_ < text_.size()) {
      const std::size_t newline = std::min(text_.find('\n', at_), text_.size());
      const std::size_t end = firstOf("#", newline);  // a remark is left out
      skipBlanks(end);
      if (at_ < end) {
        readLine(end);
      } else if (end == newline) {
        closeGroup();
      }
      at_ = std::min(newline + 1, text_.size());
    }
    closeGroup();
    if (!document_.polygons && !document_.segments) shapes();
    document_.text = true;
    return std::move(document_);
  }

 private:
  [[noreturn]] void fail(const char* message) const { throw ClipInputError(text_, at_, message); }
  // Each search ends with the line, so that the time does not grow with the square of the lines.
  std::size_t firstOf(std::string_view any, std::size_t end) const {
    return std::min(text_.substr(0, end).find_first_of(any, at_), end);
  }
  void skipBlanks(std::size_t end) {
    at_ = std::min(text_.substr(0, end).find_first_not_of(kBlanks, at_), end);
  }
  std::string_view word(std::size_t end) const {
    return text_.substr(at_, firstOf(kBlanks, end) - at_);
  }

  // The list that is being read.
  ClipShapes<Real>& shapes() {
    std::optional<ClipShapes<Real>>& list = segments_ ? document_.segments : document_.polygons;
    return list ? *list : list.emplace();
  }

  void closeGroup() {
    if (!open_) return;
    if (segments_ && group_ && group_->size() != 2) fail("a second vertex expected");
    shapes().push_back(std::move(group_));
    open_ = false;
  }

  void readLine(std::size_t end) {
    const std::string_view first = word(end);
    if (first == "polygons" || first == "segments") {
      closeGroup();
      segments_ = first == "segments";
      shapes();
      document_.headings = true;
      at_ += first.size();
    } else {
      if (open_ && !group_) fail("a blank line expected after null");
      if (first == "null") {
        if (open_) fail("four numbers expected");
        group_.reset();
        at_ += first.size();
      } else {
        if (!open_) group_.emplace();
        if (segments_ && group_->size() == 2) fail("a blank line expected after two vertices");
        group_->push_back(readPoint(end));
      }
      open_ = true;
    }
    skipBlanks(end);
    if (at_ != end) fail("end of line expected");
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
      at_ += digits.size();
    }
    return point;
  }

  std::string_view text_;
  bool segments_;
  std::size_t at_ = 0;
  ClipDocument<Real> document_;
  std::optional<ClipPoints<Real>> group_;  // the points of the group that is being read
  bool open_ = false;
};

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

}  // namespace ulm::tools
