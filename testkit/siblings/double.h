// Adding methods in the Foundation double.
#pragma once

#include "testkit/siblings/siblings.h"

namespace testkit {

/// The double gets the methods, until it is reset.
AddMethod addToDouble();

}  // namespace testkit
