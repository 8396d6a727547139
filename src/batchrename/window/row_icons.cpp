// row_icons.cpp - the small pictures that stand for the state of a row, told apart by their shapes.
#include <array>
#include <span>

#include "batchrename/window/row_list_view.h"
#include "ui/system_ink.h"

namespace BatchRename {
namespace {

constexpr int kGrid = 16;                            // the pictures are drawn on a grid of 16 by 16
constexpr COLORREF kTransparent = RGB(255, 0, 255);  // never seen: it stands for what the list shows around a picture

constexpr POINT kArrow[] = {{2, 6}, {8, 6}, {8, 3}, {14, 8}, {8, 13}, {8, 10}, {2, 10}};
constexpr POINT kTriangle[] = {{8, 1}, {15, 14}, {1, 14}};
constexpr POINT kExclamation[] = {{7, 5}, {9, 5}, {9, 10}, {7, 10}};
constexpr POINT kDot[] = {{7, 11}, {9, 11}, {9, 13}, {7, 13}};
constexpr POINT kCheck[] = {{2, 8}, {4, 6}, {7, 9}, {12, 3}, {14, 5}, {7, 13}};

/// A function of the common controls that are active on this thread. They are loaded with the first window, and not
/// with the library.
template <class Function>
Function FromCommonControls(const char* name) noexcept {
    const HMODULE controls = GetModuleHandleW(L"comctl32.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(controls, name)));
}

void Fill(HDC context, int size, std::span<const POINT> corners, COLORREF colour) {
    std::array<POINT, 8> scaled = {};
    for (size_t at = 0; at < corners.size(); ++at)
        scaled[at] = {corners[at].x * size / kGrid, corners[at].y * size / kGrid};
    SetDCBrushColor(context, colour);
    SetDCPenColor(context, colour);
    Polygon(context, scaled.data(), static_cast<int>(corners.size()));
}

/// Shapes tell the states apart. Colours are the system's, which suit the ground of a list in every theme.
void Draw(HDC context, int size, int picture) {
    const COLORREF ink = GetSysColor(COLOR_WINDOWTEXT);
    const COLORREF ground = GetSysColor(COLOR_WINDOW);
    if (picture == 1) Fill(context, size, kArrow, Ui::AccentInk());
    if (picture == 2) {
        Fill(context, size, kTriangle, ink);
        Fill(context, size, kExclamation, ground);
        Fill(context, size, kDot, ground);
    }
    if (picture == 3) Fill(context, size, kCheck, ink);
}

}  // namespace

void ImageListTraits::Close(Raw raw) noexcept {
    if (auto* const destroy = FromCommonControls<decltype(&ImageList_Destroy)>("ImageList_Destroy")) destroy(raw);
}

ImageListHandle MakeRowIcons(int size) {
    constexpr int kCount = 4;
    auto* const create = FromCommonControls<decltype(&ImageList_Create)>("ImageList_Create");
    auto* const addMasked = FromCommonControls<decltype(&ImageList_AddMasked)>("ImageList_AddMasked");
    if (!create || !addMasked) return {};  // the status says in words what the pictures show
    ImageListHandle list(create(size, size, ILC_COLOR24 | ILC_MASK, kCount, 0));
    const HDC screen = GetDC(nullptr);
    const HDC context = CreateCompatibleDC(screen);
    for (int picture = 0; picture < kCount; ++picture) {
        const HBITMAP bitmap = CreateCompatibleBitmap(screen, size, size);
        const HGDIOBJ before = SelectObject(context, bitmap);
        SelectObject(context, GetStockObject(DC_BRUSH));
        SelectObject(context, GetStockObject(DC_PEN));
        SetDCBrushColor(context, kTransparent);
        SetDCPenColor(context, kTransparent);
        Rectangle(context, 0, 0, size, size);
        Draw(context, size, picture);
        SelectObject(context, before);
        addMasked(list.Get(), bitmap, kTransparent);
        DeleteObject(bitmap);
    }
    DeleteDC(context);
    ReleaseDC(nullptr, screen);
    return list;
}

}  // namespace BatchRename
