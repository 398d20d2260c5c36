// The tree of names under which an image exports functions.
#pragma once

#include "macho/file/image.h"

namespace macho {

/// Adds the exports that the tree holds. Needs the image's segments.
void readExports(Bytes tree, Image& image);

}  // namespace macho
