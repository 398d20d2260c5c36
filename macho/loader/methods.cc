#include "macho/loader/methods.h"

#include <cstdio>
#include <cstdlib>
#include <ffi.h>
#include <string_view>
#include <vector>

#include "macho/loader/frames.h"
#include "native/methods.h"

namespace macho {
namespace {

using Implementation = void (*)();

[[noreturn]] void refuse(const char* types) {
  std::fprintf(stderr, "no method of a bundle's can have the types \"%s\" here\n", types);
  std::abort();
}

// How many types of a word each the text has, the result's among them.
unsigned countWords(const char* types) {
  constexpr std::string_view kWords = "@#:*v";
  unsigned count = 0;
  for (const char* type = types; *type != '\0'; ++type) {
    if (*type == '^') ++type;
    if (*type == '\0' || kWords.find(*type) == std::string_view::npos) refuse(types);
    ++count;
  }
  return count;
}

// What the runtime calls; lives as long as the class does, so for good.
class Entrance {
 public:
  Entrance(Implementation implementation, unsigned arguments)
      : implementation_(implementation), types_(arguments, &ffi_type_pointer) {
    auto* const closure = static_cast<ffi_closure*>(ffi_closure_alloc(sizeof(ffi_closure), &code_));
    if (closure == nullptr ||
        ffi_prep_cif(&cif_, FFI_DEFAULT_ABI, arguments, &ffi_type_pointer, types_.data()) !=
            FFI_OK ||
        ffi_prep_closure_loc(closure, &cif_, pass, this, code_) != FFI_OK) {
      std::fputs("there is no way into a bundle for a method\n", stderr);
      std::abort();
    }
  }
  [[nodiscard]] Implementation function() const { return reinterpret_cast<Implementation>(code_); }

 private:
  struct Call {
    ffi_cif* cif;
    Implementation implementation;
    void* result;
    void** arguments;
  };
  static void pass(ffi_cif* cif, void* result, void** arguments, void* raw) {
    Call call{cif, static_cast<Entrance*>(raw)->implementation_, result, arguments};
    enterBundle(
        [](void* context) {
          const auto& passing = *static_cast<Call*>(context);
          ffi_call(passing.cif, passing.implementation, passing.result, passing.arguments);
        },
        &call);
  }

  Implementation implementation_;
  std::vector<ffi_type*> types_;
  ffi_cif cif_ = {};
  void* code_ = nullptr;
};

}  // namespace

zel::BOOL addMethod(zel::Class* owner, zel::SEL selector, Implementation implementation,
                    const char* types) {
  const auto* const entrance = new Entrance(implementation, countWords(types) - 1);
  return zel::class_addMethod(owner, selector, entrance->function(), types);
}

}  // namespace macho
