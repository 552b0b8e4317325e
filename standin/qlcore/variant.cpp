#include "hostsdk/qlcore/variant.h"

#include <cstring>
#include <cwchar>
#include <utility>

#include "standin/qlcore/detail/text_memory.h"

namespace {

using ulm::qlcore::copyText;
using ulm::qlcore::TextMemory;

// Binds a whole value of the given type.
template <class Whole>
void bindWhole(CQLVariant& target, QLVariantTag tag, const void* address) {
  Whole number;
  std::memcpy(&number, address, sizeof number);
  target = CQLVariant(static_cast<std::int64_t>(number), tag);
}

// Binds a value that is copied to `member`, a member of the target's union.
template <class Plain>
void bindPlain(CQLVariant& target, QLVariantTag tag, Plain& member, const void* address) {
  Plain copy;
  std::memcpy(&copy, address, sizeof copy);  // `address` may point into the variant itself
  target.Clear();
  target.tag = tag;
  member = copy;
}

}  // namespace

void QLVariantInit(tagQLVARIANT* variant) noexcept {
  variant->tag = kQLEmpty;
  variant->value.whole = 0;
}

CQLVariant::CQLVariant(const char* text) : CQLVariant() { *this = text; }
CQLVariant::CQLVariant(std::int64_t number, QLVariantTag wholeTag) : CQLVariant() {
  if (wholeTag < kQLFlag || wholeTag > kQLUnsignedLong) return;
  tag = wholeTag;
  value.whole = number;
}
CQLVariant::CQLVariant(const CQLVariant& other) : CQLVariant() { *this = other; }
CQLVariant::CQLVariant(CQLVariant&& other) noexcept : CQLVariant() { *this = std::move(other); }

CQLVariant& CQLVariant::operator=(const CQLVariant& other) {
  if (this == &other) return *this;
  if (other.tag == kQLString) return *this = static_cast<const char*>(other.value.string);
  if (other.tag == kQLWideString)
    return *this = static_cast<const wchar_t*>(other.value.wideString);
  Clear();
  static_cast<tagQLVARIANT&>(*this) = other;
  return *this;
}
CQLVariant& CQLVariant::operator=(CQLVariant&& other) noexcept {
  std::swap(static_cast<tagQLVARIANT&>(*this), static_cast<tagQLVARIANT&>(other));
  return *this;
}
CQLVariant& CQLVariant::operator=(const char* text) {
  TextMemory<char> copy = text != nullptr ? copyText(text, std::strlen(text)) : nullptr;
  Clear();
  tag = kQLString;
  value.string = copy.release();
  return *this;
}
CQLVariant& CQLVariant::operator=(const wchar_t* text) {
  TextMemory<wchar_t> copy = text != nullptr ? copyText(text, std::wcslen(text)) : nullptr;
  Clear();
  tag = kQLWideString;
  value.wideString = copy.release();
  return *this;
}
CQLVariant& CQLVariant::operator=(const CXString& string) { return *this = string.text; }
CQLVariant& CQLVariant::operator=(const CXStringW& string) { return *this = string.text; }
CQLVariant& CQLVariant::operator=(int number) { return *this = CQLVariant(number, kQLInt); }
CQLVariant& CQLVariant::operator=(long number) { return *this = CQLVariant(number, kQLLong); }

void CQLVariant::Clear() noexcept {
  if (tag == kQLString) odrxFree(value.string);
  if (tag == kQLWideString) odrxFree(value.wideString);
  QLVariantInit(this);
}

CQLVariant::operator const char*() const noexcept {
  return tag == kQLString ? value.string : nullptr;
}
CQLVariant::operator int() const noexcept {
  return tag >= kQLFlag && tag <= kQLUnsignedLong ? static_cast<int>(value.whole) : 0;
}

int CQLVariant::BindFromValue(QLVariantTag newTag, const void* address) {
  if (address == nullptr) return 0;
  switch (newTag) {
    case kQLFlag:
      bindWhole<bool>(*this, newTag, address);
      break;
    case kQLUnsignedChar:
      bindWhole<unsigned char>(*this, newTag, address);
      break;
    case kQLUnsignedShort:
      bindWhole<unsigned short>(*this, newTag, address);
      break;
    case kQLUnsignedInt:
      bindWhole<unsigned int>(*this, newTag, address);
      break;
    case kQLInt:
      bindWhole<int>(*this, newTag, address);
      break;
    case kQLLong:
      bindWhole<long>(*this, newTag, address);
      break;
    case kQLUnsignedLong:
      bindWhole<unsigned long>(*this, newTag, address);
      break;
    case kQLDouble:
      bindPlain(*this, newTag, value.real, address);
      break;
    case kQLFloat:
      bindPlain(*this, newTag, value.single, address);
      break;
    case kQLString:
      *this = static_cast<const char*>(address);
      break;
    case kQLSize:
      bindPlain(*this, newTag, value.size, address);
      break;
    case kQLRealSize:
      bindPlain(*this, newTag, value.realSize, address);
      break;
    case kQLPoint:
      bindPlain(*this, newTag, value.point, address);
      break;
    case kQLRealPoint:
      bindPlain(*this, newTag, value.realPoint, address);
      break;
    case kQLRect:
      bindPlain(*this, newTag, value.rect, address);
      break;
    case kQLRealRect:
      bindPlain(*this, newTag, value.realRect, address);
      break;
    case kQLBlob:
      bindPlain(*this, newTag, value.blob, address);
      break;
    case kQLWideString:
      *this = static_cast<const wchar_t*>(address);
      break;
    default:
      return 0;
  }
  return 1;
}
