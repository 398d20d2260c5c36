// The C library functions that product code calls, as macOS has them: it is built where macOS's own
// headers are not.
#pragma once

#include <cstddef>

namespace std {

extern "C" {
void* malloc(size_t size);
void* calloc(size_t count, size_t size);
void free(void* block);
void* memcpy(void* target, const void* source, size_t size);
void* memset(void* target, int byte, size_t size);
size_t strlen(const char* text);
int strcmp(const char* left, const char* right);
__attribute__((format(printf, 3, 4))) int snprintf(char* buffer, size_t size, const char* format,
                                                   ...);
}

}  // namespace std
