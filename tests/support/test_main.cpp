// test_main.cpp - the main function of every test program.
#include <cstdio>
#include <string_view>

#include <gtest/gtest.h>

#include "support/second_process.h"
#include "win32/windows.h"

namespace {

/// A crash must not look like success: Wine may end a crashed program with status 0.
LONG WINAPI ReportCrash(EXCEPTION_POINTERS* fault) {
    std::fprintf(stderr, "crashed with exception %08lx at %p\n", fault->ExceptionRecord->ExceptionCode,
                 fault->ExceptionRecord->ExceptionAddress);
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), 70);
    return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

int main(int argc, char** argv) {
    SetUnhandledExceptionFilter(ReportCrash);
    const bool isSecond = argc > 1 && std::string_view(argv[1]) == "elevated-server";
    if (isSecond && QVTest::ServeAsSecondProcess()) return QVTest::ServeAsSecondProcess()();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
