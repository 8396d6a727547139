#include "reliability/in_process_host.h"

#include <gtest/gtest.h>

#include "win32/path.h"

namespace QVTest {

InProcessHost::InProcessHost()
    : m_library(
          LoadLibraryW(Win32::FullPath(std::wstring(Win32::FolderOf(QV_HOST_PROGRAM)) + L"QVUtils.dll").c_str())) {
    if (!m_library) ADD_FAILURE() << "the library cannot be loaded, error " << GetLastError();
}

}  // namespace QVTest
