#include "host/app/session.h"

#include <algorithm>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/contract/whole_file.h"
#include "host/elevated/message_pipe.h"
#include "host/questions/answers.h"
#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"

#include <tlhelp32.h>

namespace QVHost {
namespace {

constexpr const wchar_t* kLibraryName = L"QVUtils.dll";
constexpr const wchar_t* kEnglishName = L"qvhost-english.txt";
constexpr const wchar_t* kGermanName = L"qvhost-german.txt";
constexpr const wchar_t* kConfigurationName = L"QVUtils Host";
constexpr const wchar_t* kSettingsName = L"settings.json";

/// The path given, in full, or `name` beside the program.
std::wstring GivenOrBeside(const std::wstring& given, const std::wstring& program, const wchar_t* name) {
    return given.empty() ? Win32::JoinPath(Win32::FolderOf(program), name) : FullUserPath(given);
}

/// Windows speak the user's language; scripts get the same words on every machine.
const wchar_t* LanguageNameFor(const HostOptions& options) {
    const bool isForPeople = options.asksInWindows || options.action == Action::SendTo;
    const bool isGerman = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_GERMAN;
    return isForPeople && isGerman ? kGermanName : kEnglishName;
}

/// "" for an elevated second process: what it would read and write there, others without its rights can change.
/// @throws UsageError
std::wstring ConfigurationFolder(const HostOptions& options) {
    if (options.action == Action::ElevatedServer) return {};
    if (!options.config.empty()) return Win32::JoinPath(FullUserPath(options.config), L"");
    const std::wstring folder = EnvironmentText(L"APPDATA");
    // The current folder is nobody's place for settings.
    if (folder.empty()) throw UsageError(L"APPDATA names no folder for settings; give one with --config FOLDER");
    return Win32::JoinPath(Win32::JoinPath(folder, kConfigurationName), L"");
}

std::wstring SettingsPath(const HostOptions& options) {
    const std::wstring folder = ConfigurationFolder(options);
    return folder.empty() ? folder : folder + kSettingsName;
}

std::unique_ptr<IAnswers> MakeAnswers(const HostOptions& options, const HostEnvironment& environment, Output& output) {
    // Nobody sees the second process, so nobody could answer it.
    if (options.action == Action::ElevatedServer) return std::make_unique<SafeAnswers>();
    if (!options.answers.empty()) return std::make_unique<ScriptedAnswers>(output, options.answers);
    if (options.asksInWindows) return std::make_unique<WindowAnswers>();
    if (environment.readAnswer && !options.printsJson)
        return std::make_unique<ConsoleAnswers>(output, environment.readAnswer);
    return std::make_unique<SafeAnswers>();
}

ProgressWatch MakeProgressWatch(const HostOptions& options, const HostEnvironment& environment) {
    ProgressWatch watch = environment.progressWatch;
    watch.isInWindow = options.asksInWindows && !watch.isShown;
    return watch;
}

ElevatedLaunch MakeElevatedLaunch(const HostOptions& options, const HostEnvironment& environment) {
    // The same program: the second process serves no other.
    return {OwnImage(), {L"--library", LibraryPath(options, environment)}};
}

const std::wstring& Existing(const std::wstring& file, bool mustExist) {
    if (mustExist && !Win32::Exists(file)) throw UsageError(L"there is no file " + file);
    return file;
}

constexpr DWORD kLook = 100;  // milliseconds: a window that closes on another thread sends no word to this one

BOOL CALLBACK LookForForeignWindow(HWND window, LPARAM found) {
    DWORD process = 0;
    const DWORD thread = GetWindowThreadProcessId(window, &process);
    const bool isForeign =
        process == GetCurrentProcessId() && thread != GetCurrentThreadId() && IsWindowVisible(window);
    if (isForeign) *reinterpret_cast<bool*>(found) = true;
    return !isForeign;
}

/// A search for windows sets up the desktop, which takes longer than most commands; with one thread there is none to
/// find.
bool IsOnlyThread() {
    const Win32::FileHandle threads(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof(thread);
    int count = 0;
    for (BOOL isThere = Thread32First(threads.Get(), &thread); isThere; isThere = Thread32Next(threads.Get(), &thread))
        count += thread.th32OwnerProcessID == GetCurrentProcessId();
    return count == 1;
}

bool IsEaten(Session& session, MSG& message) {
    return std::ranges::any_of(session.Extensions(), [&](const auto& extension) {
        return extension->Commands() && extension->Commands()->PreTranslateMessage(&message, 0);
    });
}

void RunQueuedCommands(Session& session) {
    for (const QueuedCommand& command : session.State().commandQueue.Take())
        if (Quorvane::SDK::IPluginInterface* const extension = session.Extensions()[command.extension]->Commands())
            extension->OnCommand(command.id, 0, command.value);
}

}  // namespace

std::wstring EnvironmentText(const wchar_t* name) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    if (size == 0) return {};
    std::wstring text(size, L'\0');
    text.resize(GetEnvironmentVariableW(name, text.data(), size));
    return text;
}

std::wstring LibraryPath(const HostOptions& options, const HostEnvironment& environment) {
    return GivenOrBeside(options.library, environment.program, kLibraryName);
}

void ReadLanguage(LanguageTexts& texts, const HostOptions& options, const HostEnvironment& environment,
                  Output& output) {
    const std::wstring file = GivenOrBeside(options.language, environment.program, LanguageNameFor(options));
    std::string bytes;
    const uint32_t error = ReadWholeFile(file, bytes);
    if (error != ERROR_SUCCESS && !options.language.empty())
        throw UsageError(L"cannot read the language file " + file + L": " + DescribeError(error));
    if (error != ERROR_SUCCESS)
        output.Note(L"[language] " + file + L" cannot be read; texts show as their ids: " + DescribeError(error));
    for (const std::wstring& fault : texts.Read(bytes))
        output.Note(std::wstring(L"[language] ").append(file).append(L": ").append(fault));
}

HostState MakeHostState(const HostOptions& options, const HostEnvironment& environment, Output& output) {
    return {.output = output,
            .log = {output, options.log.empty() ? L"" : FullUserPath(options.log), options.isQuiet},
            .texts = {},
            .settings = {output, SettingsPath(options)},
            .questions = {output, MakeAnswers(options, environment, output)},
            .progressWatch = MakeProgressWatch(options, environment),
            .elevatedLaunch = MakeElevatedLaunch(options, environment),
            .configurationFolder = ConfigurationFolder(options),
            // The panel brings its own.
            .mainWindow = options.asksInWindows && options.action != Action::Panel ? MakeMainWindow() : UniqueWindow(),
            .isElevated = options.isElevated || options.action == Action::ElevatedServer,
            .canElevate = options.canElevate,
            .usesColumnD = options.usesColumnD,
            .usesColumnE = options.usesColumnE};
}

Session::Session(const HostOptions& options, HostEnvironment& environment, Output& output)
    : m_state(MakeHostState(options, environment, output)),
      m_library(Existing(LibraryPath(options, environment), !options.library.empty())) {
    ReadLanguage(m_state.texts, options, environment, output);
}

void Session::StartExtensions() {
    for (uint32_t index = 0; index < m_library.Extensions().size(); ++index) StartExtension(index);
}

LoadedExtension& Session::StartExtension(uint32_t index) {
    if (index >= m_library.Extensions().size()) throw UsageError(L"there is no such extension");
    m_services.push_back(std::make_unique<HostServices>(m_state, index, m_library.Extensions()[index]));
    LoadedExtension& extension =
        *m_extensions.emplace_back(std::make_unique<LoadedExtension>(m_library, index, *m_services.back()));
    if (Quorvane::SDK::IFileProperties* const provider = extension.Properties())
        m_state.columns.AddProvider(m_state.propertyColumns[index], *provider);
    return extension;
}

bool Session::RunCommand(uint32_t id) {
    const Quorvane::SDK::Command* const command = m_state.menus.Find(id);
    for (const auto& extension : m_extensions) {
        if (!extension->Commands() || (command && command->extension != extension->Index())) continue;
        if (extension->Commands()->OnCommand(id, 0, 0) != 0) return true;
    }
    return false;
}

void Session::ShutdownExtensions() {
    for (const auto& extension : m_extensions) extension->Shutdown();
}

bool IsProcessElevated() {
    HANDLE raw = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &raw)) return false;
    const Win32::KernelHandle token(raw);
    TOKEN_ELEVATION elevation = {};
    DWORD size = 0;
    return GetTokenInformation(token.Get(), TokenElevation, &elevation, sizeof(elevation), &size) &&
           elevation.TokenIsElevated != 0;
}

bool HasWindowsOfOtherThreads() {
    if (IsOnlyThread()) return false;
    bool isFound = false;
    EnumWindows(LookForForeignWindow, reinterpret_cast<LPARAM>(&isFound));
    return isFound;
}

void PumpWhile(Session& session, const std::function<bool()>& goesOn, const std::function<bool(MSG&)>& translate) {
    const HANDLE event = session.State().commandQueue.Event();
    while (goesOn()) {
        MsgWaitForMultipleObjects(1, &event, FALSE, kLook, QS_ALLINPUT);
        RunQueuedCommands(session);
        MSG message = {};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) return;
            if (IsEaten(session, message) || (translate && translate(message))) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

}  // namespace QVHost
