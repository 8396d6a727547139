#include "host/contract/extension_services.h"

#include <algorithm>
#include <cstdarg>

#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"
#include "host/contract/whole_file.h"
#include "host/panel/panel_texts.h"
#include "win32/folder.h"

namespace QVHost {
namespace {

constexpr size_t kLongestLine = size_t{16} * 1024 * 1024;  // units

/// A text of any length by the system's own formatting: `%s` is UTF-16, `%I64d` is known. Empty when the format cannot
/// be formatted.
std::wstring FormatLine(const wchar_t* format, va_list arguments) {
    for (size_t size = 512; size <= kLongestLine; size *= 2) {
        std::wstring line(size, L'\0');
        va_list copy;
        va_copy(copy, arguments);
        const int length = _vsnwprintf(line.data(), line.size(), format, copy);
        va_end(copy);
        if (length < 0 || static_cast<size_t>(length) >= size) continue;
        line.resize(static_cast<size_t>(length));
        return line;
    }
    return {};
}

using namespace Quorvane::SDK;

constexpr uint32_t kDone = 1;
constexpr uint32_t kRefused = 0;
constexpr uint32_t kFirstExtensionCommand = 30000;  // below are the host's own

/// What became of a marked file; null for a kind that is none.
const wchar_t* WordOfMark(uint32_t kind) {
    switch (kind) {
        case MarkKind::Done: return L"done";
        case MarkKind::Failed: return L"failed";
        case MarkKind::Skipped: return L"skipped";
        default: return nullptr;
    }
}

uint32_t Fill(FileList& list, const IPanelView::Items& items) {
    for (const std::shared_ptr<FileItem>& item : items) list.Add(item);
    return kDone;
}

Tone ToneOf(uint32_t kind) {
    if (kind == LogKind::Failure) return Tone::Failure;
    return kind == LogKind::Success ? Tone::Success : Tone::Plain;
}

}  // namespace

HostServices::HostServices(HostState& state, uint32_t extension, const ExtensionInfo& record)
    : m_state(state),
      m_extension(extension),
      m_extensionId(TextOfField(record.ExtensionId, std::size(record.ExtensionId))),
      m_section(TextOfField(record.ShortName, std::size(record.ShortName))),
      m_menuBuilder(state.menus, state.texts, m_section),
      m_commandFactory(state.menus, state.texts, m_section, extension),
      m_settings(state.settings, m_extensionId) {}

// The object belongs to the run: an extension that is done with it, or says so twice, changes nothing.
void HostServices::Release() {}

HWND HostServices::GetMainWindow() {
    return m_state.mainWindow.Get();
}

uint16_t HostServices::GetTextModule(const char* extensionId) {
    return Guarded<uint16_t>(0, [&]() -> uint16_t {
        const std::wstring id = Wide(extensionId ? extensionId : "");
        if (id.empty()) return 0;
        // The section of an extension in this library goes by its short name, that of any other by its id.
        return m_state.texts.ModuleOf(id == m_extensionId ? m_section : id);
    });
}

const wchar_t* HostServices::GetText(TextId id) {
    return Guarded(L"", [&] { return m_state.texts.Find(m_section, id); });
}

const wchar_t* HostServices::GetModuleText(uint16_t module, TextId id) {
    return Guarded(L"", [&] { return m_state.texts.Find(m_state.texts.SectionOf(module), id); });
}

uint32_t HostServices::RunHostCommand(uint32_t command, IFileList* list, uint32_t flags, uintptr_t value) {
    return Guarded(kRefused, [&] {
        if (command >= kFirstExtensionCommand) {
            m_state.commandQueue.Put({m_extension, command, value});
            return kDone;
        }
        if (command == HostCommand::HasFocusedItem) return FocusedGroup().empty() ? kRefused : kDone;
        const std::shared_ptr<FileList> known = m_state.files.FindList(list);
        if (!known) return kRefused;
        switch (command) {
            case HostCommand::GroupItems: return Fill(*known, FocusedGroup());
            case HostCommand::GetSelection: {
                const IPanelView::Items items = SelectedItems();
                // Extensions do nothing then, and say nothing.
                if (items.empty() && !m_state.panel) m_state.output.Note(L"[note] no files are given");
                return Fill(*known, items);
            }
            case HostCommand::MarkFiles: return MarkFiles(*known, flags) ? kDone : kRefused;
            default: return kRefused;
        }
    });
}

IPanelView::Items HostServices::SelectedItems() const {
    return m_state.panel ? m_state.panel->SelectedItems() : m_state.selection;
}

// On a command line the first path counts as the focused item, and all paths as its group: there is no panel that
// could show more files than were given.
IPanelView::Items HostServices::FocusedGroup() const {
    return m_state.panel ? m_state.panel->FocusedGroup() : m_state.selection;
}

bool HostServices::MarkFiles(const FileList& list, uint32_t kind) {
    const wchar_t* const word = WordOfMark(kind);
    if (!word) return false;
    const bool isReported = m_state.reportsCalls && m_state.output.IsCollecting();
    for (const std::shared_ptr<FileItem>& item : list.Items()) {
        if (isReported) break;
        if (m_state.panel)
            m_state.panel->MarkFile(item->Path(), kind);
        else if (!m_state.output.Item(ItemFields(item->Path(), L"", word, 0, L"")))
            m_state.output.Note(std::wstring(L"[").append(word).append(L"] ").append(item->Path()));
    }
    m_state.loggedFailures = 0;
    if (kind == MarkKind::Failed) m_state.failedCount += static_cast<uint32_t>(list.Items().size());
    return true;
}

ICommandFactory* HostServices::GetCommandFactory() {
    return &m_commandFactory;
}

IMenuBuilder* HostServices::GetMenuBuilder() {
    return &m_menuBuilder;
}

ICustomCommandRegistry* HostServices::GetCustomCommandRegistry(const char* moduleName) {
    return Guarded<ICustomCommandRegistry*>(nullptr, [&]() -> ICustomCommandRegistry* {
        if (!moduleName || !*moduleName) return nullptr;
        return &m_state.customCommands.RegistryOf(m_extension, moduleName);
    });
}

IXmlService* HostServices::GetXmlService(const wchar_t*, uint32_t) {
    return Guarded<IXmlService*>(nullptr, [&] {
        return m_state.xmlServices.Keep(std::make_shared<XmlService>(m_state.xmlServices, m_state.output));
    });
}

ISettings* HostServices::GetSettings() {
    return &m_settings;
}

uint32_t HostServices::GetConfigurationFolder(wchar_t* buffer, uint32_t capacity) {
    // An extension that asks means to keep something there. Where the folder cannot be made, that is what will fail and
    // say so.
    GuardedCall([&] { Win32::MakeFolders(m_state.configurationFolder); });
    return CopyText(m_state.configurationFolder, buffer, capacity);
}

template <class Face, class Object>
void* HostServices::KeepService(std::shared_ptr<Object> object) {
    void* const face = static_cast<Face*>(object.get());
    const std::lock_guard lock(m_mutex);
    m_services.push_back({face, std::move(object)});
    return face;
}

void* HostServices::AcquireService(uint32_t number, uint32_t, const wchar_t*) {
    return Guarded<void*>(nullptr, [&]() -> void* {
        switch (number) {
            case ServiceNumber::FileOperations:
                return KeepService<IFileOperations>(std::make_shared<FileOperations>(
                    m_state.files, m_state.columns, m_state.output, m_state.failedCount, m_state.panel));
            case ServiceNumber::FolderRefresh:
                return KeepService<IFolderRefresh>(std::make_shared<FolderRefresh>(m_state.panel));
            case ServiceNumber::PropertySet:
                return KeepService<IPropertySet>(std::make_shared<PropertySet>(m_state.propertyColumns[m_extension]));
            case ServiceNumber::ElevatedChannel:
                if (!m_state.canElevate) return nullptr;
                return KeepService<IElevatedChannel>(
                    std::make_shared<ElevatedChannel>(m_state.log, m_state.elevatedLaunch, m_extension));
            default: return nullptr;
        }
    });
}

// Extensions give either the service's number or 0 here; the pointer alone says which one is meant.
void HostServices::ReleaseService(void* service, uint32_t) {
    GuardedCall([&] {
        std::shared_ptr<void> last;  // ended after the lock is released
        const std::lock_guard lock(m_mutex);
        const auto found = std::ranges::find(m_services, service, &Service::face);
        if (found == m_services.end()) return;
        last = std::move(found->owner);
        m_services.erase(found);
    });
}

bool HostServices::IsElevated() {
    return m_state.isElevated;
}

bool HostServices::CanElevate() {
    return m_state.canElevate;
}

bool HostServices::UseColumnD() {
    return m_state.usesColumnD;
}

bool HostServices::UseColumnE() {
    return m_state.usesColumnE;
}

IFileList* HostServices::CreateFileList() {
    return Guarded<IFileList*>(nullptr, [&] { return m_state.files.MakeList(); });
}

IProgress* HostServices::OpenProgress(const wchar_t* title, uint32_t total) {
    return Guarded<IProgress*>(nullptr, [&] {
        return m_state.progressDisplays.Keep(std::make_shared<Progress>(
            m_state.progressDisplays, m_state.output, m_state.progressWatch,
            ProgressTitle{TextOrEmpty(title), TextOf(m_state.texts, PanelText::Cancel)}, total));
    });
}

IChoiceList* HostServices::CreateChoiceList() {
    return Guarded<IChoiceList*>(
        nullptr, [&] { return m_state.choiceLists.Keep(std::make_shared<ChoiceList>(m_state.choiceLists)); });
}

void HostServices::Log(uint32_t, uint32_t kind, const wchar_t* format, ...) {
    if (!format) return;
    if (kind == LogKind::Failure) ++m_state.loggedFailures;
    va_list arguments;
    va_start(arguments, format);
    GuardedCall([&] { m_state.log.Write(FormatLine(format, arguments), ToneOf(kind)); });
    va_end(arguments);
}

DialogWords HostServices::Words() {
    const auto text = [&](PanelText id) { return TextOf(m_state.texts, id); };
    return {text(PanelText::Input), text(PanelText::Ok), text(PanelText::Cancel)};
}

uint32_t HostServices::MessageBox(const wchar_t* message, const wchar_t* caption, uint32_t style) {
    return Guarded(SafeButton(style).id, [&] {
        return m_state.questions.Box({TextOrEmpty(caption), TextOrEmpty(message), style});
    });
}

bool HostServices::ShowInputDialog(TextId prompt, wchar_t* buffer, uint32_t capacity) {
    return Guarded(false, [&] {
        if (!buffer || capacity == 0) return false;
        const std::optional<std::wstring> text =
            m_state.questions.Input({GetText(prompt), TextOfField(buffer, capacity), Words()}, capacity - 1);
        if (text) CopyText(*text, buffer, capacity);
        return text.has_value();
    });
}

bool HostServices::ShowChoiceDialog(ChoiceRequest* request) {
    return Guarded(false, [&] {
        if (!request) return false;
        const std::shared_ptr<ChoiceList> choices = m_state.choiceLists.Find(request->choices);
        if (!choices || choices->Choices().empty()) return false;
        const std::optional<uint32_t> position = m_state.questions.Choice(
            {TextOfField(request->title, std::size(request->title)),
             TextOfField(request->prompt, std::size(request->prompt)), choices->Choices(), request->position, Words()});
        if (position) request->position = *position;
        return position.has_value();
    });
}

}  // namespace QVHost
