// com.h - owners for COM: its use by a thread, and references to its objects.
#pragma once

#include "win32/windows.h"

#include <objbase.h>
#include <wrl/client.h>

namespace Win32 {

/// COM for this thread while the object lives, in an apartment of its own. The thread may use it already, in whichever
/// way.
class ComApartment {
public:
    ComApartment() : m_isOurs(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComApartment() {
        if (m_isOurs) CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

private:
    bool m_isOurs;
};

/// Owns one reference to a COM object. Objects are received into it (`&pointer`) and never given by Attach, which in
/// this compiler's header adds a reference that nobody releases.
using Microsoft::WRL::ComPtr;

/// Another interface of `object`; none when it has no such interface, or is none itself. The header's own way needs
/// numbers of interfaces that the compiler does not know for all.
template <class Other, class Interface>
ComPtr<Other> InterfaceOf(const ComPtr<Interface>& object, REFIID id) {
    ComPtr<Other> other;
    if (object) object->QueryInterface(id, &other);
    return other;
}

/// A new object of a class that lives in this process; none when the system has no such class.
template <class Interface>
ComPtr<Interface> MakeComObject(REFCLSID classId, REFIID interfaceId) {
    ComPtr<Interface> object;
    CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, interfaceId, &object);
    return object;
}

}  // namespace Win32
