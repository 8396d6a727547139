// frame_messages.h - what other threads post to the window.
#pragma once

#include "win32/windows.h"

namespace BatchRename {

namespace FrameMessage {
inline constexpr UINT PreviewReady = WM_APP + 1;
inline constexpr UINT RunProgress = WM_APP + 2;  // first value: renames so far
inline constexpr UINT RunEnded = WM_APP + 3;
inline constexpr UINT RunUnrecorded = WM_APP + 4;  // first value: Windows error code
}  // namespace FrameMessage

inline constexpr wchar_t kFrameClass[] = L"QVBatchRenameFrame";
inline constexpr wchar_t kFrameTitle[] = L"Quorvane - BatchRename";
inline constexpr wchar_t kRestoreTitle[] = L"Quorvane - BatchRename - Restore names";

}  // namespace BatchRename
