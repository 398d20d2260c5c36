#include "macho/loader/bindings.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <iterator>

#include "macho/loader/frames.h"
#include "macho/loader/messages.h"
#include "macho/loader/passages.h"
#include "native/files.h"
#include "native/methods.h"

namespace macho {
namespace {

extern "C" int _setjmp(std::int32_t* registers);

void clear(void* block, std::size_t size) { std::memset(block, 0, size); }

// Looks for constants of Foundation alone, everywhere, which on macOS is the handle -2.
void* findConstant(void* handle, const char* name) {
  const bool everywhere = reinterpret_cast<std::intptr_t>(handle) == -2;
  if (!everywhere || zel::zelFoundationConstant(name) == nullptr) return nullptr;
  return dlsym(RTLD_DEFAULT, name);
}

// The method is called by this system.
zel::BOOL addMethod(zel::Class* owner, zel::SEL selector, void (*implementation)(),
                    const char* types) {
  void* const wrapped = inward(reinterpret_cast<void*>(implementation));
  return zel::class_addMethod(owner, selector, reinterpret_cast<void (*)()>(wrapped), types);
}

template <class Function>
void* addressOf(Function* function) {
  return reinterpret_cast<void*>(function);
}

void* asItIs(void* function) { return function; }

// What stands for a symbol, and what is done to it before a bundle calls it. Whatever runs code of
// Foundation may raise, and goes out by a passage.
struct Row {
  std::string_view symbol;
  void* function;
  void* (*wrapping)(void*);
};

const Row kRows[] = {
    // the Objective-C runtime
    {"_objc_msgSend", addressOf(sendMessage), outward},
    {"_objc_msgSend_fpret", addressOf(sendMessageForFloat), outward},
    {"_objc_msgSend_stret", addressOf(sendMessageForStructure), outwardForStructure},
    {"_objc_exception_try_enter", addressOf(tryEnter), asItIs},
    {"_objc_exception_try_exit", addressOf(tryExit), asItIs},
    {"_objc_exception_extract", addressOf(extractThrown), asItIs},
    {"_objc_exception_throw", addressOf(throwToFrame), asItIs},
    {"_objc_getClass", addressOf(zel::objc_lookUpClass), asItIs},
    {"_object_getClass", addressOf(zel::classOf), asItIs},
    {"_object_getClassName", addressOf(zel::object_getClassName), asItIs},
    {"_objc_getMetaClass", addressOf(zel::objc_getMetaClass), asItIs},
    {kAddMethod, addressOf(addMethod), asItIs},
    {"_class_getMethodImplementation", addressOf(zel::class_getMethodImplementation), asItIs},
    {"_class_getSuperclass", addressOf(zel::class_getSuperclass), asItIs},
    {"_sel_registerName", addressOf(zel::sel_registerName), asItIs},
    // Foundation and Core Foundation
    {"_NSLog", addressOf(zel::NSLog), outward},
    {"_CFRetain", addressOf(zel::CFRetain), outward},
    {"_CFRelease", addressOf(zel::CFRelease), outward},
    {"_CFStringCreateWithCString", addressOf(zel::CFStringCreateWithCString), outward},
    {"_CFStringCreateWithCharacters", addressOf(zel::CFStringCreateWithCharacters), outward},
    {"_CFStringGetLength", addressOf(zel::CFStringGetLength), outward},
    {"_CFStringGetCString", addressOf(zel::CFStringGetCString), outward},
    {"_CFStringGetCharacters", addressOf(zel::CFStringGetCharacters), outward},
    {"_CFStringCreateMutableCopy", addressOf(zel::CFStringCreateMutableCopy), outward},
    {"_CFStringNormalize", addressOf(zel::CFStringNormalize), outward},
    {"_CFURLCreateWithString", addressOf(zel::CFURLCreateWithString), outward},
    {"_CFURLCreateCopyAppendingPathComponent",
     addressOf(zel::CFURLCreateCopyAppendingPathComponent), outward},
    {"_CFURLCreateCopyDeletingLastPathComponent",
     addressOf(zel::CFURLCreateCopyDeletingLastPathComponent), outward},
    {"_CFURLCopyLastPathComponent", addressOf(zel::CFURLCopyLastPathComponent), outward},
    {"_CFURLCreateFromFSRef", addressOf(zel::CFURLCreateFromFSRef), outward},
    {"_CFURLGetFSRef", addressOf(zel::CFURLGetFSRef), outward},
    {"_CFDictionaryCreateMutable", addressOf(zel::CFDictionaryCreateMutable), outward},
    {"_CFDictionaryGetValue", addressOf(zel::CFDictionaryGetValue), outward},
    {"_CFDictionarySetValue", addressOf(zel::CFDictionarySetValue), outward},
    {"_CFDictionaryRemoveValue", addressOf(zel::CFDictionaryRemoveValue), outward},
    // the File Manager
    {"_FSGetCatalogInfo", addressOf(zel::FSGetCatalogInfo), outward},
    {"_FSpMakeFSRef", addressOf(zel::FSpMakeFSRef), outward},
    // the C library
    {"__setjmp", addressOf(_setjmp), asItIs},
    {"_dlsym", addressOf(findConstant), asItIs},
    {"_malloc", addressOf(std::malloc), asItIs},
    {"_calloc", addressOf(std::calloc), asItIs},
    {"_free", addressOf(std::free), asItIs},
    {"_memcpy", addressOf(std::memcpy), asItIs},
    {"_memset", addressOf(std::memset), asItIs},
    {"___bzero", addressOf(clear), asItIs},
    {"_strcmp", addressOf(std::strcmp), asItIs},
    {"_strlen", addressOf(std::strlen), asItIs},
    {"_snprintf", addressOf(std::snprintf), asItIs},
};

}  // namespace

void* bindingOf(std::string_view symbol) {
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                       [symbol](const Row& r) { return r.symbol == symbol; });
  return row == std::end(kRows) ? nullptr : row->wrapping(row->function);
}

}  // namespace macho
