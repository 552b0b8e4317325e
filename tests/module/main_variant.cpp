// Linked with the module's own objects into the library ULM_MainVariant, which shows what the real
// library hides: its load order, its flags and its allocation operators.
#include "tests/module/main_variant.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <new>

#include "bignum/constants.h"
#include "hostsdk/export.h"
#include "module/glue/debug_switches.h"
#include "module/glue/instance.h"
#include "module/glue/switch_flags.h"
#include "standin/odrx/alloc_control.h"
#include "standin/win32/stand_in.h"

// The sized forms, which some compilers do not declare by default.
void operator delete(void* block, std::size_t bytes) noexcept;
void operator delete[](void* block, std::size_t bytes) noexcept;
void operator delete[](void* block, std::size_t bytes, std::align_val_t alignment) noexcept;

namespace {

static_assert(ulm::glue::kInitSwitchFlags < ulm::bignum::kConstantsPriority);

// This object is built with the priority of the facilities' constants.
class Constant {
 public:
  Constant() { ulmWin32LogCall("constant made"); }
  ~Constant() { ulmWin32LogCall("constant destroyed"); }
  Constant(const Constant&) = delete;
  Constant& operator=(const Constant&) = delete;
};
[[gnu::init_priority(ulm::bignum::kConstantsPriority)]] const Constant constant;

struct alignas(64) Wide {
  char bytes[64];
};

struct Form {
  const char* name;
  std::function<void*()> allocate;
  std::function<void(void*)> release;
  std::size_t alignment;
};

bool formWorks(const Form& form, bool failing) {
  const OdrxAllocCounts before = odrxAllocCounts();
  if (failing) odrxAllocFail(0, UINT64_MAX);
  void* block = nullptr;
  try {
    block = form.allocate();
  } catch (const std::bad_alloc&) {
    odrxAllocFail(0, 0);
    return failing && odrxAllocCounts().liveBlocks == before.liveBlocks;
  }
  odrxAllocFail(0, 0);
  if (failing) return block == nullptr;
  const bool made = block != nullptr && odrxAllocCounts().liveBlocks == before.liveBlocks + 1 &&
                    reinterpret_cast<std::uintptr_t>(block) % form.alignment == 0;
  form.release(block);
  return made && odrxAllocCounts().liveBlocks == before.liveBlocks;
}

}  // namespace

extern "C" ULM_EXPORT int _QLAfxDllMain(HINSTANCE instance, int attached) {
  const bool own = instance == Module_GetInstance();
  ulmWin32LogCall(!own ? "afx with a foreign instance" : attached != 0 ? "afx 1" : "afx 0");
  return 0;
}

extern "C" ULM_EXPORT unsigned variantFlags() {
  using namespace ulm::glue;
  const std::uint32_t mask = (addJumpFlag ? kSwitchJumpArrOnAdd : 0u) |
                             (removeJumpFlag ? kSwitchJumpArrOnRemove : 0u) |
                             (defecateFlag ? kSwitchDefecateMem : 0u);
  const bool lasting = DebugSwitches_AssertEnabled() == static_cast<bool>(assertFlag) &&
                       DebugSwitches_Read() == mask;
  return mask << 1 | (assertFlag ? 1u : 0u) | (lasting ? 0u : 16u);
}

extern "C" ULM_EXPORT void variantDelete(void* block) { operator delete(block); }

extern "C" ULM_EXPORT const char* variantTryNew(bool failing) {
  const std::align_val_t plain{8}, strict{64};
  const std::nothrow_t& quiet = std::nothrow;
  using Block = void*;
  const Form forms[] = {
      {"new", [] { return operator new(24); }, [](Block b) { operator delete(b); }, 16},
      {"of size 0", [] { return operator new(0); }, [](Block b) { operator delete(b); }, 16},
      {"new[]", [] { return operator new[](24); }, [](Block b) { operator delete[](b); }, 16},
      {"sized", [] { return operator new(24); }, [](Block b) { operator delete(b, 24); }, 16},
      {"sized[]", [] { return operator new[](24); }, [](Block b) { operator delete[](b, 24); }, 16},
      {"nothrow", [&] { return operator new(24, quiet); },
       [&](Block b) { operator delete(b, quiet); }, 16},
      {"nothrow[]", [&] { return operator new[](24, quiet); },
       [&](Block b) { operator delete[](b, quiet); }, 16},
      {"little aligned", [=] { return operator new(24, plain); },
       [=](Block b) { operator delete(b, plain); }, 8},
      {"aligned", [=] { return operator new(24, strict); },
       [=](Block b) { operator delete(b, strict); }, 64},
      {"aligned[]", [=] { return operator new[](24, strict); },
       [=](Block b) { operator delete[](b, 24, strict); }, 64},
      {"aligned nothrow", [&] { return operator new(24, strict, quiet); },
       [&](Block b) { operator delete(b, strict, quiet); }, 64},
      {"expression", [] { return static_cast<Block>(new Wide); },
       [](Block b) { delete static_cast<Wide*>(b); }, 64},
  };
  for (const Form& form : forms) {
    if (failing && form.alignment == 64 && form.name[0] == 'e')
      continue;  // new would run a constructor on null
    if (!formWorks(form, failing)) return form.name;
  }
  return nullptr;
}
