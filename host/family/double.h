// Adding methods in the Foundation double.
#pragma once

#include "host/family/family.h"

namespace host {

/// The double gets the methods, until it is reset.
AddMethod addToDouble();

}  // namespace host
