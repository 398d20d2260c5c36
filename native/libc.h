// The few C library functions that product code calls.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
