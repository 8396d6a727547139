// owners.h - thin owners for objects of the host: each is given back when its owner goes out of scope.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sdk/boundary.h"
#include "sdk/host_services.h"

namespace Quorvane::SDK {

/// Gives something back to the host, where nothing can be done about a host that throws then.
template <class Call>
void GiveBack(Call&& call) noexcept {
    AtBoundary(false, [&] {
        std::forward<Call>(call)();
        return true;
    });
}

/// Ends a host object by its own Release.
struct ReleaseObject {
    template <class Object>
    void operator()(Object* object) const noexcept {
        GiveBack([&] { object->Release(); });
    }
};
template <class Object>
using Owned = std::unique_ptr<Object, ReleaseObject>;

struct CloseProgress {
    void operator()(IProgress* progress) const noexcept {
        GiveBack([&] { progress->Close(); });
    }
};
/// Null where the host shows no progress.
using OwnedProgress = std::unique_ptr<IProgress, CloseProgress>;

/// A service object from IHostServices::AcquireService; gives it back with the number it was asked for by.
template <class Service>
class AcquiredService {
public:
    AcquiredService(IHostServices& services, uint32_t number, const wchar_t* path = nullptr)
        : m_services(services),
          m_number(number),
          m_service(static_cast<Service*>(services.AcquireService(number, 0, path))) {}
    AcquiredService(const AcquiredService&) = delete;
    AcquiredService& operator=(const AcquiredService&) = delete;
    ~AcquiredService() {
        if (m_service) GiveBack([&] { m_services.ReleaseService(m_service, m_number); });
    }

    explicit operator bool() const noexcept { return m_service != nullptr; }
    Service* operator->() const noexcept { return m_service; }
    Service* Get() const noexcept { return m_service; }

private:
    IHostServices& m_services;
    uint32_t m_number;
    Service* m_service;
};

/// A text of the host's language file. A host gives one for every id; one that does not gets by with "".
inline const wchar_t* HostText(IHostServices& services, TextId id) {
    const wchar_t* const text = services.GetText(id);
    return text ? text : L"";
}

/// Tells in the host's log what the host does not give, where a command can only end: otherwise it would end without a
/// word.
void TellMissing(IHostServices& services, const wchar_t* what);

/// The panel's selected items; null when the host cannot make a list, which is told. `flags`: SelectionFlags.
Owned<IFileList> GatherSelection(IHostServices& services, uint32_t flags);

/// The list's items in its order, up to the first that the host does not give: it may count more than it has. They live
/// as long as the list.
std::vector<IFileItem*> ItemsOf(IFileList& list);

/// Units, with the closing zero, that a host is offered for a path or a name. Hosts count on these two numbers; a
/// longer text is asked for again with as many as the system's longest path takes.
inline constexpr uint32_t kUsualCapacity = 2048;
inline constexpr uint32_t kLargeCapacity = 4096;

/// The item's full path, of any length; empty when the host has none.
std::wstring PathOf(IFileItem& item, uint32_t capacity = kUsualCapacity);

/// The item's name, of any length; empty when the host has none.
std::wstring NameOf(IFileItem& item, uint32_t capacity = kUsualCapacity);

/// The full paths of the list's items in its order; items without one are left out.
std::vector<std::wstring> PathsOf(IFileList& list);

/// Copies a text into a field of a record for the host, cut to what the field holds with its closing zero.
template <size_t capacity>
void FillField(wchar_t (&field)[capacity], std::wstring_view text) {
    field[text.copy(field, capacity - 1)] = L'\0';
}

}  // namespace Quorvane::SDK
