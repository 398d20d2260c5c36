// Adding methods in the Foundation double.
#pragma once

#include "host/family/family.h"

namespace testkit {

/// The double gets the methods, until it is reset.
AddMethod addToDouble();

}  // namespace testkit
