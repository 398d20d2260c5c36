// Values of property lists for the tests of libzelnative, and what one is, in a line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "native/exceptions.h"
#include "tests/native/support.h"

namespace native_test {

// All of these are autoreleased.
zel::id integer(std::int64_t value);
zel::id unsignedInteger(std::uint64_t value);
zel::id boolean(bool value);
zel::id real(double value);
zel::id single(float value);
/// @param seconds since the beginning of 2001 in UTC.
zel::id date(double seconds);
zel::id dataOf(std::string_view bytes);
/// A text of those units, of which none need be half of a pair.
zel::id units(std::u16string_view text);
zel::id object(const char* text);
zel::id list(const std::vector<zel::id>& elements);
/// @param entries keys and values; a key need be no text.
zel::id dictionary(const std::vector<std::pair<zel::id, zel::id>>& entries);
zel::id null();

/// The units of a native text.
std::u16string unitsOf(zel::id text);

/// So many lists, each in the one before; 1 is an empty list.
zel::id nested(unsigned levels);

/// A value as a literal. A number begins with its type code: `i 5`, `d 0.1`, `f 0.1`, `c 1`; a text
/// is in quotes, with units that aren't ASCII as \xxxx; `<00ff>` is data, `date 0.5` a date,
/// `(i 1, "b")` a list, `{"a": i 1}` a dictionary, by its keys in order. "nil" for null.
std::string literal(zel::id value);

/// Bytes as pairs of hexadecimal digits, and back; blanks between the digits don't matter.
std::string hexadecimal(std::string_view bytes);
std::string bytesOf(std::string_view hexadecimal);
/// The bytes of native data.
std::string bytesIn(zel::id data);

/// What Foundation reads in a property list of any format, or null.
zel::id parsed(std::string_view bytes);

/// The standard defaults object.
zel::id standardDefaults();
/// Everything is written, and a new standard object reads it.
void throughTheDisk();
/// Sets a whole domain and writes it; gives back the bytes of its file. Removes the domain.
std::string fileOfDomain(zel::id contents);

/// The name of the exception with which the body ends, or nothing.
template <class Body>
std::string raisedBy(Body&& body) {
  const zel::id raised = zel::catching(body);
  return raised == nullptr ? "" : text(zel::send<zel::id, "name">(raised));
}

}  // namespace native_test
