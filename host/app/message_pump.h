// message_pump.h - the host's message loop, for extensions that keep a window of their own open after their command.
#pragma once

#include <functional>

#include "host/app/session.h"

namespace QVHost {

/// True while a thread of this process other than the calling one shows a window.
bool HasWindowsOfOtherThreads();

/// Handles messages and queued commands of this thread for as long as `goesOn` says so; it is asked at least ten times
/// a second. Messages are offered to the extensions first, then to `translate`, where there is one: true ends the
/// matter.
void PumpWhile(Session& session, const std::function<bool()>& goesOn, const std::function<bool(MSG&)>& translate = {});

}  // namespace QVHost
