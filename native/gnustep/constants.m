#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <stdbool.h>
#include <stdlib.h>
#include <string.h>

#import "native/gnustep/zelnative.h"

// What the linker knows about the variable of that name; null when the name is no variable that
// could hold an object reference.
static id* constantAt(const char* name) {
  void* const place = dlsym(RTLD_DEFAULT, name);
  Dl_info info;
  const ElfW(Sym)* symbol = NULL;
  if (place == NULL || dladdr1(place, &info, (void**)&symbol, RTLD_DL_SYMENT) == 0) return NULL;
  const bool isVariable = symbol != NULL && ELF32_ST_TYPE(symbol->st_info) == STT_OBJECT &&
                          symbol->st_size == sizeof(id);
  return isVariable ? place : NULL;
}

// A constant that was found; kept for good, because the look-up goes through all of Foundation's
// symbols.
struct Known {
  CFStringRef value;
  const struct Known* next;
  char name[];
};

static const struct Known* known;

static void remember(const char* name, CFStringRef value) {
  const size_t size = strlen(name) + 1;
  struct Known* const entry = malloc(sizeof(struct Known) + size);
  if (entry == NULL) return;
  entry->value = value;
  memcpy(entry->name, name, size);
  entry->next = __atomic_load_n(&known, __ATOMIC_ACQUIRE);
  while (!__atomic_compare_exchange_n(&known, &entry->next, entry, false, __ATOMIC_RELEASE,
                                      __ATOMIC_ACQUIRE)) {
  }
}

CFStringRef zelFoundationConstant(const char* name) {
  if (name == NULL) return nil;
  const struct Known* entry = __atomic_load_n(&known, __ATOMIC_ACQUIRE);
  for (; entry != NULL; entry = entry->next) {
    if (strcmp(entry->name, name) == 0) return entry->value;
  }
  id* const constant = constantAt(name);
  if (constant == NULL || ![*constant isKindOfClass:[NSString class]]) return nil;
  remember(name, *constant);
  return *constant;
}
