// Constants, classes and selectors, by name.
#include "native/corefoundation.h"
#include "native/numbers.h"
#include "tests/macho/loader/sample/sample.h"

namespace sample {
namespace {

void reportText(zel::CFStringRef text) {
  char buffer[100];
  const bool read = text != nullptr && zel::CFStringGetCString(text, buffer, sizeof buffer,
                                                               zel::kCFStringEncodingUTF8) != 0;
  report(read ? buffer : "nothing");
}

void reportConstants() {
  reportText(zel::zelFoundationConstant("NSGlobalDomain"));
  reportText(zel::zelFoundationConstant("NSNoSuchConstant"));
  reportText(zel::zelFoundationConstant("malloc"));
}

void reportClasses() {
  zel::Class* const string = zel::lookUpClass("NSMutableString");
  report(zel::object_getClassName(string));
  report(zel::object_getClassName(zel::class_getSuperclass(string)));
  report(zel::lookUpClass("NSNoSuchClass") == nullptr ? "no class" : "a class");
  const zel::id text = zel::send<zel::id, "string">(string);
  report(zel::isInstanceOf<"NSString">(text) ? "a text" : "no text");
  report(zel::isInstanceOf<"NSArray">(text) ? "a list" : "no list");
}

void reportNumberTypes() {
  zel::Class* const number = zel::classNamed<"NSNumber">();
  report(zel::zelNumberType(zel::send<zel::id, "numberWithBool:">(number, zel::BOOL{1})));
  report(zel::zelNumberType(zel::send<zel::id, "numberWithInt:">(number, 1)));
  report(zel::zelNumberType(zel::send<zel::id, "numberWithDouble:">(number, 0.5)));
}

void reportTexts() {
  const zel::CFStringRef text =
      zel::CFStringCreateWithCString(nullptr, "caf\x8E", zel::kCFStringEncodingMacRoman);
  reportNumber("%lld units", zel::CFStringGetLength(text));
  reportText(text);
  zel::CFRelease(text);
}

}  // namespace

const Case kConstantsCases[] = {{"constants", reportConstants},
                                {"classes", reportClasses},
                                {"number types", reportNumberTypes},
                                {"texts", reportTexts},
                                {nullptr, nullptr}};

}  // namespace sample
