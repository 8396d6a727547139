// exception_reserve.h - lets the library report that memory has run out even when none at all is left.
#pragma once

namespace Plugin {

/// To be called once, when the library is loaded.
///
/// The C++ runtime keeps a reserve for exceptions. Its lock is made with the first use, by an allocation: without
/// memory that allocation fails, which is thrown, which needs the reserve, and so on until the stack is gone. So the
/// reserve is used once while there is memory. So is the lock of function-local statics, which the runtime makes with
/// the first of them, without looking whether it got the memory.
void PrepareExceptionReserve() noexcept;

}  // namespace Plugin
