// stack.h - how far the calling thread's stack reaches down, for code that would recurse as deep as its input says.
#pragma once

#include <cstddef>

namespace Win32 {

/// The lowest address that a recursion of the calling thread may reach when `reserve` bytes are to be left below it.
const char* StackFloor(size_t reserve);

}  // namespace Win32
