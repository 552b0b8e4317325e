#include "module/product_identity.h"

#include <cstring>

#include "core/interface_query.h"
#include "core/param_value.h"
#include "hostsdk/adapter/interfaces.h"
#include "hostsdk/adapter/qlcore.h"
#include "module/glue/instance.h"
#include "module/host_lookup.h"
#include "module/product.h"

namespace {

constexpr DWORD kNameSize = 260;  // in characters

// A block of the system's memory. The destructor frees it.
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

// Returns the product version in the version resource of this library's file, as four numbers with
// dots between; empty if it cannot be read.
CXStringW versionText() {
  CXStringW text;
  wchar_t name[kNameSize + 1] = {};  // some systems cut a long name without a terminator
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
  if (length < sizeof(VS_FIXEDFILEINFO)) return text;  // the value is shorter than its structure
  VS_FIXEDFILEINFO information;
  std::memcpy(&information, value, sizeof information);
  const auto high = [](DWORD pair) { return static_cast<int>(pair >> 16); };
  const auto low = [](DWORD pair) { return static_cast<int>(pair & 0xFFFF); };
  text.Format(L"%d.%d.%d.%d", high(information.dwProductVersionMS),
              low(information.dwProductVersionMS), high(information.dwProductVersionLS),
              low(information.dwProductVersionLS));
  return text;
}

// Returns the third of the parts between dots, where several dots in a row count as one; empty if
// there are fewer parts.
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

// Queries the application for its exterior, which it stores in `exterior`, and that for the product
// interface; empty if one of them is missing.
IfaceHolder<IHostProductInfo> findProductInfo(IfaceHolder<IAppExterior>& exterior) {
  {
    const IfaceHolder<IApp> app(Host_GetApp());
    exterior = IfaceHolder<IAppExterior>(Iface_QueryChecked<IAppExterior>(app.get(), false));
  }
  return IfaceHolder<IHostProductInfo>(Iface_QueryChecked<IHostProductInfo>(exterior.get(), false));
}

}  // namespace

void publishProductIdentity() {
  // The order of the holders makes the record the first that is released, and the exterior the
  // last.
  IfaceHolder<IAppExterior> exterior;
  const IfaceHolder<IHostProductInfo> productInfo = findProductInfo(exterior);
  if (!productInfo) return;
  const IfaceHolder<IParam> record(new_MemParam());
  if (!record) return;

  Param_SetValue(record.get(), "LongName", ulm::module::kLongName);
  Param_SetValue(record.get(), "ShortName", ulm::module::kShortName);
  Param_SetValue(record.get(), "DisplayName", ulm::module::kLongName);
  const CXStringW version = versionText();
  Param_SetValue(record.get(), "ProductVersion", version);
  const CXString build = buildNumber(CXString(version.text));
  if (build.GetLength() > 0) Param_SetValue(record.get(), "ProductBuild", build);
  Param_SetValue(record.get(), "Icon", ulm::module::kIcon);
  productInfo->publishRecord(ulm::module::kVendorString, ulm::module::kProductString, record.get());
}
