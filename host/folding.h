// How the host compares texts: without regard to case.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The text that stands for all that differ from it in case only, by Unicode's full case folding.
/// @param text in UTF-8; one that isn't well-formed beyond ASCII stands for itself alone.
std::string folded(std::string_view text);

}  // namespace host
