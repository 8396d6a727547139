// progress.h - how far the work on one file is, told while it goes on, and the wish to stop it. Knows no host.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <utility>

#include "textio/qvutils_exception.h"

namespace QVUtils {

/// Hears how much of a file's work is done, in percent, and says whether to go on.
using TellProgress = std::function<bool(uint32_t percent)>;

/// Passes on what a work says of itself, as often as a person sees a difference. Used on one thread.
class Progress {
public:
    /// Nobody hears of it, and nobody stops it.
    Progress() = default;
    explicit Progress(TellProgress tell) : m_tell(std::move(tell)) {}

    /// The next part of the work begins. At its end, `percent` of all is done. A part that is done again, in another
    /// way, tells of nothing new.
    void BeginPart(uint32_t percent) {
        m_from = m_to;
        m_to = std::max(percent, m_to);
    }

    /// `done` of `total` of this part is done. Cheap enough for each thousand lines, or 100 KB: most calls look at the
    /// clock only. @throws QVUtilsException code 1223 when the work is to stop
    void Advance(uint64_t done, uint64_t total) {
        const uint64_t part = total == 0 ? 0 : (m_to - m_from) * std::min(done, total) / total;
        m_percent = m_from + static_cast<uint32_t>(part);
        KeepAlive();
    }

    /// The work goes on, and no part of it that could be told is done. As often as Advance.
    /// @throws QVUtilsException code 1223 when the work is to stop
    void KeepAlive() {
        const auto now = std::chrono::steady_clock::now();
        if (!m_tell || now - m_last < kPause) return;
        m_last = now;
        if (!m_tell(m_percent)) throw QVUtilsException(ErrorCode::Cancelled, "Cancelled by the user");
    }

    /// Between two calls of what hears.
    static constexpr std::chrono::milliseconds kPause{50};

private:
    TellProgress m_tell;
    std::chrono::steady_clock::time_point m_last;
    uint32_t m_percent = 0;
    uint32_t m_from = 0;
    uint32_t m_to = 0;
};

}  // namespace QVUtils
