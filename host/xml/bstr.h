// bstr.h - owner of a text as COM automation takes it, and arguments made of texts and objects.
#pragma once

#include <string_view>

#include "win32/windows.h"

#include <oleauto.h>

namespace QVHost {

/// The compiler's own owners (comutil.h) call functions that it has no library for.
class Bstr {
public:
    Bstr() = default;
    explicit Bstr(std::wstring_view text) : m_raw(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(m_raw); }

    BSTR Get() const { return m_raw; }
    BSTR* Receive() { return &m_raw; }
    std::wstring_view View() const {
        return m_raw ? std::wstring_view(m_raw, SysStringLen(m_raw)) : std::wstring_view();
    }

private:
    BSTR m_raw = nullptr;
};

/// A text argument; the string must outlive it.
inline VARIANT TextVariant(const Bstr& text) {
    VARIANT variant = {};
    variant.vt = VT_BSTR;
    variant.bstrVal = text.Get();
    return variant;
}

/// An object as an argument; it must outlive it.
inline VARIANT ObjectVariant(IUnknown* object) {
    VARIANT variant = {};
    variant.vt = VT_UNKNOWN;
    variant.punkVal = object;
    return variant;
}

}  // namespace QVHost
