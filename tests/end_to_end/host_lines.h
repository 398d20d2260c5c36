// Values of the host part by part.
#pragma once

#include "host/host.h"
#include "tests/end_to_end/property_lists.h"

namespace tests {

/// Every value by its path, "Accounts.0.Port": as describe() has it, or "list" or "dictionary" and
/// how much is in it. Two values with the same lines differ at most in the order of entries.
Lines linesOf(const host::Host& host, const host::Value& value);

}  // namespace tests
