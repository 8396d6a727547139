// link_targets_test.cpp - targets that are links to other places. None can be made here, so what the system says of
// them is replaced.

#include "support/replaced_imports.h"
#include "support/services_of_host.h"
#include "support/temporary_folder.h"

namespace {

using namespace QVTest;

/// What the system says of files called out.bin. The replaced functions are plain ones, so there is one.
struct Answers {
    DWORD attributes = 0;  // 0: the true ones
    bool isElsewhere = false;
};
Answers& Now() {
    static Answers answers;
    return answers;
}

template <class Function>
Function Real(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), name)));
}

DWORD WINAPI Attributes(const wchar_t* path) {
    const bool isMeant = Now().attributes != 0 && std::wstring_view(path).ends_with(L"out.bin");
    return isMeant ? Now().attributes : Real<decltype(&GetFileAttributesW)>("GetFileAttributesW")(path);
}

DWORD WINAPI FinalPath(HANDLE file, wchar_t* path, DWORD capacity, DWORD flags) {
    const auto real = Real<decltype(&GetFinalPathNameByHandleW)>("GetFinalPathNameByHandleW");
    const DWORD length = real(file, path, capacity, flags);
    const bool isMeant = Now().isElsewhere && std::wstring_view(path, length).ends_with(L"out.bin");
    if (isMeant) path[length - 9] = L'_';  // the last letter of its folder
    return length;
}

TEST(LinkTargets, AreNotWrittenThrough) {
    const InProcessHost host;
    const TemporaryFolder settings;
    const std::string text = "MIME-Version: 1.0\r\nx; name=\"out.bin\"\r\n\r\n\r\nYWJj";
    const std::tuple<const char*, Answers, bool, const char*> cases[] = {
        {"a link", {FILE_ATTRIBUTE_REPARSE_POINT, false}, true, "The target is a link"},
        {"a link that leads nowhere", {FILE_ATTRIBUTE_REPARSE_POINT, false}, false, "The target is a link"},
        {"a link that is not marked", {0, true}, true, "The target is a link"},
        {"a name that only looks free", {INVALID_FILE_ATTRIBUTES, false}, true, "Unable to open file for writing"},
    };
    for (const auto& [why, answers, exists, reason] : cases) {
        const TemporaryFolder folder;
        const std::wstring source = folder.Write(L"a.b64", text);
        if (exists) folder.Write(L"out.bin", "old");
        const Contents before = folder.ReadAll();
        Now() = answers;
        HostRun run;
        {
            const ReplacedImport attributes(host.Library(), "GetFileAttributesW", reinterpret_cast<void*>(Attributes));
            const ReplacedImport asHost(host.Host(), "GetFileAttributesW", reinterpret_cast<void*>(Attributes));
            const ReplacedImport path(host.Library(), "GetFinalPathNameByHandleW", reinterpret_cast<void*>(FinalPath));
            run = host.Run({L"--config", settings.Path(), L"--answer", L"yes", L"command", L"30211", source});
        }
        EXPECT_EQ(folder.ReadAll(), before) << why;
        EXPECT_NE(run.out.find(reason), std::string::npos) << why << run.out;
        EXPECT_EQ(run.error, "") << why << "; nothing is asked";
    }
}

}  // namespace
