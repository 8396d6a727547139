// empty.cpp - a library in which nothing is.
#include <windows.h>

extern "C" __declspec(dllexport) int Nothing() {
    return 0;
}
