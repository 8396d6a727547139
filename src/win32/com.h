// com.h - owners for COM: its use by a thread, and references to its objects.
#pragma once

#include <utility>

#include "win32/windows.h"

#include <objbase.h>

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

/// Owns one reference to a COM object.
template <class Interface>
class ComPointer {
public:
    ComPointer() = default;
    explicit ComPointer(Interface* raw) : m_raw(raw) {}
    ComPointer(ComPointer&& other) noexcept : m_raw(std::exchange(other.m_raw, nullptr)) {}
    ComPointer& operator=(ComPointer&& other) noexcept {
        std::swap(m_raw, other.m_raw);
        return *this;
    }
    ~ComPointer() {
        if (m_raw) m_raw->Release();
    }

    explicit operator bool() const { return m_raw != nullptr; }
    Interface* operator->() const { return m_raw; }
    Interface& operator*() const { return *m_raw; }
    Interface* Get() const { return m_raw; }

    /// For a call that puts a new object here.
    Interface** Receive() {
        *this = ComPointer();
        return &m_raw;
    }
    void** ReceiveUntyped() { return reinterpret_cast<void**>(Receive()); }

    /// Another interface of the object; none when it has no such interface.
    template <class Other>
    ComPointer<Other> As(REFIID id) const {
        ComPointer<Other> other;
        if (m_raw) m_raw->QueryInterface(id, other.ReceiveUntyped());
        return other;
    }

private:
    Interface* m_raw = nullptr;
};

/// A new object of a class that lives in this process; none when the system has no such class.
template <class Interface>
ComPointer<Interface> MakeComObject(REFCLSID classId, REFIID interfaceId) {
    ComPointer<Interface> object;
    CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, interfaceId, object.ReceiveUntyped());
    return object;
}

}  // namespace Win32
