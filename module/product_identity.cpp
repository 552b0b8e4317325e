#include "module/product_identity.h"

#include <cstring>

#include "core/iface_holder.h"
#include "core/param_value.h"
#include "core/query_checked.h"
#include "hostsdk/adapter/interfaces.h"
#include "hostsdk/adapter/qlcore.h"
#include "module/glue/instance.h"
#include "module/host_lookup.h"
#include "module/product.h"

namespace {

using namespace ulm::module;  // the product's texts

constexpr DWORD kNameSize = 260;  // in characters

// A block of the platform's memory, freed on every path.
class GlobalBlock {
 public:
  explicit GlobalBlock(SIZE_T bytes) noexcept : block_(GlobalAlloc(GPTR, bytes)) {}
  ~GlobalBlock() {
    if (block_ != nullptr) GlobalFree(block_);
  }
  GlobalBlock(const GlobalBlock&) = delete;
  GlobalBlock& operator=(const GlobalBlock&) = delete;
  void* get() const noexcept { return block_; }

 private:
  HGLOBAL block_;
};

// The product version of the version resource of this library's file, as four dotted numbers; empty
// where it cannot be read.
CXStringW versionText() {
  CXStringW text;
  wchar_t name[kNameSize + 1] = {};  // a cut name may come without a terminator
  GetModuleFileNameW(Module_GetInstance(), name, kNameSize);
  DWORD handle = 0;
  const DWORD size = GetFileVersionInfoSizeW(name, &handle);
  if (size == 0) return text;
  const GlobalBlock block(size);
  if (block.get() == nullptr) return text;
  if (!GetFileVersionInfoW(name, 0, size, block.get())) return text;
  void* value = nullptr;
  UINT length = 0;
  if (!VerQueryValueW(block.get(), L"\\", &value, &length)) return text;
  if (length < sizeof(VS_FIXEDFILEINFO)) return text;  // the fields would be read past the value
  VS_FIXEDFILEINFO information;
  std::memcpy(&information, value, sizeof information);
  const auto high = [](DWORD pair) { return static_cast<int>(pair >> 16); };
  const auto low = [](DWORD pair) { return static_cast<int>(pair & 0xFFFF); };
  text.Format(L"%d.%d.%d.%d", high(information.dwProductVersionMS),
              low(information.dwProductVersionMS), high(information.dwProductVersionLS),
              low(information.dwProductVersionLS));
  return text;
}

// The third of the runs of characters between dots; empty where there are fewer.
CXString buildNumber(const CXString& version) {
  CXString build;
  const char* token = version.text;
  std::size_t length = 0;
  for (int number = 1; number <= 3; ++number) {
    token += length;
    token += std::strspn(token, ".");
    length = std::strcspn(token, ".");
  }
  build.AssignCopy(token, static_cast<int>(length));
  return build;
}

IfaceHolder<IHostProductInfo> findProductInfo(IfaceHolder<IAppExterior>& exterior) {
  {
    const IfaceHolder<IApp> app(Host_GetApp());
    exterior = IfaceHolder<IAppExterior>(Iface_QueryChecked<IAppExterior>(app.get(), false));
  }
  return IfaceHolder<IHostProductInfo>(Iface_QueryChecked<IHostProductInfo>(exterior.get(), false));
}

}  // namespace

void publishProductIdentity() {
  // Held in this order, so that the record is released first and the exterior last.
  IfaceHolder<IAppExterior> exterior;
  const IfaceHolder<IHostProductInfo> productInfo = findProductInfo(exterior);
  if (!productInfo) return;
  const IfaceHolder<IParam> record(new_MemParam());
  if (!record) return;

  Param_SetValue(record.get(), "LongName", kLongName);
  Param_SetValue(record.get(), "ShortName", kShortName);
  Param_SetValue(record.get(), "DisplayName", kLongName);
  const CXStringW version = versionText();
  Param_SetValue(record.get(), "ProductVersion", version);
  const CXString build = buildNumber(CXString(version.text));
  if (build.GetLength() > 0) Param_SetValue(record.get(), "ProductBuild", build);
  Param_SetValue(record.get(), "Icon", kIcon);
  productInfo->publishRecord(kVendorString, kProductString, record.get());
}
