// The streams that say which pointers of an image are to be adjusted.
#pragma once

#include "macho/file/image.h"

namespace macho {

/// Adds the pointers into the image itself that the stream lists. Needs the image's segments.
void readRebases(Bytes stream, Image& image);
/// Adds the pointers to symbols outside that the stream lists. Needs the image's segments and
/// libraries.
void readImports(Bytes stream, Binding binding, Image& image);

}  // namespace macho
