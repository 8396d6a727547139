// live_count.h - counts what a request would do to the selected files while its dialog is open, on a thread of its own,
// which calls no host and writes nothing.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fileutils/find_replace/find_replace_form.h"
#include "win32/windows.h"

namespace FileUtils {

/// One for each dialog. A count ends after 64 MB or three seconds at the most.
///
/// Nobody ever waits for the thread: where it is told to stop it lets go of the file with the next block, and ends by
/// itself once the object is gone. It holds on to the module until then.
class LiveCount {
public:
    /// `message` is posted to `window` when a count is there to be taken.
    LiveCount(std::vector<std::wstring> files, HWND window, UINT message);
    LiveCount(const LiveCount&) = delete;
    LiveCount& operator=(const LiveCount&) = delete;
    ~LiveCount();

    /// Begins to count, instead of what was counted before. The thread starts with the first count; where the system
    /// gives none there are no counts.
    void Begin(FindAndReplaceRequest request);
    /// What is being counted is of no interest any more.
    void Cancel();
    /// The count begun last, once, when it is ready and was not cancelled.
    std::optional<CountSummary> Take();

private:
    struct Shared;

    std::shared_ptr<Shared> m_shared;
    bool m_isStarted = false;
};

}  // namespace FileUtils
