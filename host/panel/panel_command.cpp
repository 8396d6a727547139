#include "host/app/session.h"
#include "host/app/subcommands.h"

#include "host/app/host_error.h"
#include "host/app/selection.h"
#include "host/app/unix_paths.h"
#include "host/panel/panel_window.h"
#include "win32/handle.h"

#include <ole2.h>

namespace QVHost {
namespace {

/// The thread shows the system's own dialogs, which need an apartment and drag and drop.
class OleApartment {
public:
    OleApartment() : m_isStarted(SUCCEEDED(OleInitialize(nullptr))) {}
    OleApartment(const OleApartment&) = delete;
    OleApartment& operator=(const OleApartment&) = delete;
    ~OleApartment() {
        if (m_isStarted) OleUninitialize();
    }

private:
    bool m_isStarted;
};

/// A path alone need not be there: the panel says what is wrong with it, and shows the folder above.
std::vector<std::wstring> PathsToShow(const HostOptions& options, std::istream& in) {
    if (options.filesFrom || options.operands.size() > 1) {
        std::vector<std::wstring> paths = SelectedPaths(options.operands, options.filesFrom, in);
        if (!paths.empty()) return paths;
    }
    return {FullUserPath(options.operands.empty() ? L"." : options.operands.front())};
}

}  // namespace

int RunPanel(Session& session, const HostOptions& options, std::istream& in) {
    const OleApartment apartment;
    // A person sits here, and can answer the system's prompt.
    session.State().canElevate = true;
    session.State().isElevated |= IsProcessElevated();
    PanelWindow panel(session);
    session.StartExtensions();
    panel.Open(PathsToShow(options, in));
    PumpWhile(
        session, [&] { return panel.IsOpen(); }, [&](MSG& message) { return panel.PreTranslate(message); });
    // While the panel is still there: a renaming in work reports to it, and a window that closes keeps its place.
    session.ShutdownExtensions();
    return session.State().settings.Save() ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace QVHost
