// How deep lists and dictionaries stand within each other in a property list of text.
#pragma once

#include <stdbool.h>
#include <stddef.h>

// Whether that is deeper than the bound. The text is XML or of the old style, in any encoding that
// has ASCII's characters; it need not be right.
bool zelTextNestsDeeper(const void* bytes, size_t length, int bound);
