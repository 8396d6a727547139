// row_icons.h - the small pictures that stand for the state of a row: shapes first, colours only beside them.
#pragma once

#include "win32/handle.h"

#include <commctrl.h>

namespace BatchRename {

struct ImageListTraits {
    using Raw = HIMAGELIST;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept;
};
using ImageListHandle = Win32::UniqueHandle<ImageListTraits>;

/// One picture for each RowMark, in its order; the first is empty. `size`: pixels. In high contrast all are in the
/// colour of the text.
ImageListHandle MakeRowIcons(int size);

}  // namespace BatchRename
