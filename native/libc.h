// The few C library functions that product code calls.
#pragma once

#include <cstdlib>
#include <cstring>
