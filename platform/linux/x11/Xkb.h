#pragma once

// The library's header uses a keyword of C++ as a name.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
