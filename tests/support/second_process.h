// second_process.h - a test program as the second process of the host that runs in it: the host starts the program that
// it runs in once more.
#pragma once

namespace QVTest {

/// Serves as "elevated-server", as the command line says; gives the exit code. Null in programs without a host.
using SecondProcess = int (*)();
inline SecondProcess& ServeAsSecondProcess() {
    static SecondProcess serve = nullptr;
    return serve;
}

}  // namespace QVTest
