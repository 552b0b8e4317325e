// The documents of `ulmira clip`. The first byte selects the width and what the text holds before
// its first heading; the rest is a document, JSON or plain text.
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

#include "command/clip_document.h"
#include "fuzz/clip_rounding.h"

namespace {

using namespace ulm::tools;
using namespace ulm::fuzz;

template <class Real>
bool same(const std::optional<ClipShapes<Real>>& a, const std::optional<ClipShapes<Real>>& b) {
  if (a.has_value() != b.has_value()) return false;
  if (!a) return true;
  return std::equal(a->begin(), a->end(), b->begin(), b->end(), [](const auto& p, const auto& q) {
    if (p.has_value() != q.has_value()) return false;
    return !p ||
           std::equal(p->begin(), p->end(), q->begin(), q->end(), [](const auto& v, const auto& w) {
             return std::equal(v.begin(), v.end(), w.begin(), w.end(), sameBits);
           });
  });
}

// Whether any shape of the document has a property.
template <class Real>
bool any(const ClipDocument<Real>& document, bool (*has)(const ClipPoints<Real>& shape)) {
  for (const auto* shapes : {&document.polygons, &document.segments}) {
    if (!*shapes) continue;
    for (const auto& shape : **shapes) {
      if (shape && has(*shape)) return true;
    }
  }
  return false;
}

template <class Real>
void check(const std::string& text, bool segments) {
  ClipDocument<Real> document;
  try {
    document = readClipDocument<Real>(text, segments);
  } catch (const ClipInputError& error) {
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    require(error.line >= 1 && error.line <= lines && error.column >= 1 &&
                error.column <= text.size() + 1,
            "a fault is in the text");
    return;
  }
  require(document.polygons || document.segments || !document.text, "a text holds a list");
  if (!document.text) {
    require(nlohmann::json::accept(text), "what is read is JSON");
  }
  const bool isFinite = !any<Real>(document, [](const ClipPoints<Real>& shape) {
    return std::any_of(shape.begin(), shape.end(), [](const auto& vertex) {
      return !std::all_of(vertex.begin(), vertex.end(), [](Real k) { return std::isfinite(k); });
    });
  });
  require(isFinite || document.text, "JSON has finite numbers");
  try {
    const std::string json = writeClipJson(document);
    require(isFinite && nlohmann::json::accept(json), "the JSON is JSON");
    const ClipDocument<Real> again = readClipDocument<Real>(json, segments);
    require(same(document.polygons, again.polygons) && same(document.segments, again.segments),
            "JSON reads back");
  } catch (const ClipInputError&) {
    require(false, "the JSON is read");
  } catch (const std::runtime_error&) {
    require(!isFinite, "finite numbers are written");
  }
  if (any<Real>(document, [](const ClipPoints<Real>& shape) { return shape.empty(); })) return;
  const ClipDocument<Real> again =
      readClipDocument<Real>(writeClipText(document), !document.polygons);
  const bool listed = document.polygons || document.segments;
  require(!listed ||
              (same(document.polygons, again.polygons) && same(document.segments, again.segments)),
          "plain text reads back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1 || size > 8192) return 0;
  Input input(data, size);
  const std::uint8_t flags = input.u8();
  const std::string text = input.text(input.takeRest());
  if ((flags & 1) != 0) {
    check<double>(text, (flags & 2) != 0);
  } else {
    check<float>(text, (flags & 2) != 0);
  }
  return 0;
}
