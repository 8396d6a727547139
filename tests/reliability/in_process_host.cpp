#include "reliability/in_process_host.h"

#include <sstream>

#include <gtest/gtest.h>

#include "host/run.h"
#include "win32/path.h"

namespace QVTest {

InProcessHost::InProcessHost()
    : m_library(
          LoadLibraryW(Win32::FullPath(std::wstring(Win32::FolderOf(QV_HOST_PROGRAM)) + L"QVUtils.dll").c_str())) {
    if (!m_library) ADD_FAILURE() << "the library cannot be loaded, error " << GetLastError();
}

HostRun InProcessHost::Run(std::vector<std::wstring> arguments) const {
    std::ostringstream said;
    std::istringstream in;
    QVHost::HostEnvironment environment = {.out = said,
                                           .error = said,
                                           .in = in,
                                           .program = QV_HOST_PROGRAM,
                                           .outIsTerminal = false,
                                           .readAnswer = {},
                                           .progressWatch = {}};
    const int status = QVHost::RunQvHost(arguments, environment);
    return {status, said.str()};
}

}  // namespace QVTest
