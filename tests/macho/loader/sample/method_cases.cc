// Methods that this bundle gives to a native class, called by either side.
#include "native/methods.h"
#include "tests/macho/loader/sample/sample.h"

namespace sample {
namespace {

double halfOf(zel::id /*self*/, zel::SEL /*selector*/, std::int32_t number) { return number / 2.0; }

void raiseBack(zel::id self, zel::SEL /*selector*/) { zel::send<void, "raise">(self); }

void giveMethods() {
  zel::Class* const meta = zel::objc_getMetaClass("LoaderSample");
  const bool gave = zel::class_addMethod(meta, zel::selector<"halfOf:">(),
                                         reinterpret_cast<void (*)()>(halfOf), "d12@0:4i8") != 0 &&
                    zel::class_addMethod(meta, zel::selector<"raiseBack">(),
                                         reinterpret_cast<void (*)()>(raiseBack), "v8@0:4") != 0;
  report(gave ? "given" : "there already");
}

void useMethods() {
  zel::Class* const owner = zel::lookUpClass("LoaderSample");
  reportNumber("twice half %lld",
               static_cast<long long>(zel::send<double, "halfOf:">(owner, 7) * 2));
  const zel::id caught = zel::catching([&] { zel::send<void, "raiseBack">(owner); });
  report(caught == nullptr ? "nothing" : "caught");
}

}  // namespace

const Case kMethodCases[] = {
    {"give methods", giveMethods}, {"use methods", useMethods}, {nullptr, nullptr}};

}  // namespace sample
