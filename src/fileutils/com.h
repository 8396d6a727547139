// com.h - owners for COM: its use by a thread, and interfaces.
#pragma once

#include <memory>

#include "win32/windows.h"

#include <objbase.h>

namespace FileUtils {

/// COM for this thread while the object lives. The thread may use it already, in whichever way.
class ComOnThisThread {
public:
    ComOnThisThread() : m_result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ComOnThisThread(const ComOnThisThread&) = delete;
    ComOnThisThread& operator=(const ComOnThisThread&) = delete;
    ~ComOnThisThread() {
        if (SUCCEEDED(m_result)) CoUninitialize();
    }

private:
    HRESULT m_result;
};

struct ReleaseInterface {
    void operator()(IUnknown* object) const noexcept { object->Release(); }
};
template <class Interface>
using OwnedInterface = std::unique_ptr<Interface, ReleaseInterface>;

}  // namespace FileUtils
