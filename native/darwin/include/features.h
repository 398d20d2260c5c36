// The compiler's C++ headers ask this header of the C library for its version. There is none here.
#pragma once

#define __GLIBC_PREREQ(major, minor) 0
