// windows.h - the one place that includes the system's header, so that every file sees it the same way.
#pragma once

#ifdef QV_ENGINE
#error "Engines know no system: what they need of it is an argument, or a function of win32/ without this header"
#endif

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

// The system renames these words by macro; they are operation names of the contract with the host.
#undef MessageBox
#undef GetMessage
#undef GetObject
