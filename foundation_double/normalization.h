// Unicode form D, as far as file names of tests need it: the precomposed letters of Latin-1, Latin
// Extended-A and Vietnamese, and Hangul syllables. Marks that come decomposed keep their order.
#pragma once

#include <string>
#include <string_view>

namespace foundation_double::objc {

std::u16string decomposed(std::u16string_view units);

}  // namespace foundation_double::objc
