#include "batchrename/window/name_painter.h"

#include <usp10.h>
#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace BatchRename {
namespace {

constexpr DWORD kLayout = SSA_GLYPHS | SSA_FALLBACK | SSA_LINK;
constexpr double kReadableContrast = 4.5;  // WCAG 2.1, success criterion 1.4.3

/// Relative luminance of a colour, 0 to 1 (WCAG 2.1).
double LuminanceOf(COLORREF colour) {
    const auto linear = [](BYTE value) {
        const double part = value / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(GetRValue(colour)) + 0.7152 * linear(GetGValue(colour)) + 0.0722 * linear(GetBValue(colour));
}

void FillWith(HDC context, const RECT& rect, COLORREF colour) {
    SetDCBrushColor(context, colour);
    FillRect(context, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

}  // namespace

COLORREF ReadableColour(COLORREF first, COLORREF ground, COLORREF second) {
    const auto [darker, lighter] = std::minmax({LuminanceOf(first), LuminanceOf(ground)});
    return (lighter + 0.05) / (darker + 0.05) >= kReadableContrast ? first : second;
}

/// A text as the system lays it out.
class NamePainter::Line {
public:
    Line(const Win32::Module& library, HDC context, std::wstring_view text)
        : m_count(static_cast<int>(text.size())),
          m_free(Win32::FindFunction<decltype(&ScriptStringFree)>(library, "ScriptStringFree")),
          m_out(Win32::FindFunction<decltype(&ScriptStringOut)>(library, "ScriptStringOut")),
          m_placeOf(Win32::FindFunction<decltype(&ScriptStringCPtoX)>(library, "ScriptStringCPtoX")),
          m_widths(
              Win32::FindFunction<decltype(&ScriptStringGetLogicalWidths)>(library, "ScriptStringGetLogicalWidths")) {
        auto* const analyse = Win32::FindFunction<decltype(&ScriptStringAnalyse)>(library, "ScriptStringAnalyse");
        if (!analyse || !m_free || !m_out || !m_placeOf || !m_widths || text.empty()) return;
        // The buffer for glyphs, as large as the documentation of the function advises.
        const HRESULT result = analyse(context, text.data(), m_count, m_count * 3 / 2 + 16, -1, kLayout, 0, nullptr,
                                       nullptr, nullptr, nullptr, nullptr, &m_analysis);
        if (FAILED(result)) m_analysis = nullptr;
    }
    ~Line() {
        if (m_analysis) m_free(&m_analysis);
    }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    explicit operator bool() const { return m_analysis != nullptr; }

    /// The right edge of each unit, if all stood in the order in which they are read.
    std::vector<int> Edges() const {
        std::vector<int> edges(static_cast<size_t>(m_count));
        m_widths(m_analysis, edges.data());
        std::partial_sum(edges.begin(), edges.end(), edges.begin());
        return edges;
    }

    void Draw(HDC context, int left, int top, const RECT& bounds) const {
        const int saved = SaveDC(context);
        IntersectClipRect(context, bounds.left, bounds.top, bounds.right, bounds.bottom);
        m_out(m_analysis, left, top, 0, nullptr, 0, 0, FALSE);
        RestoreDC(context, saved);
    }

    /// Where a unit begins, or ends, from the left edge of the line.
    int PlaceOf(size_t unit, bool isEnd) const {
        int place = 0;
        m_placeOf(m_analysis, static_cast<int>(unit), isEnd, &place);
        return place;
    }

    /// The stretches of the line, from its left edge, that show the units. In a line that goes in two directions they
    /// may be several.
    std::vector<std::pair<int, int>> StretchesOf(ChangedPart part) const {
        std::vector<std::pair<int, int>> stretches;
        for (size_t unit = part.begin; unit < part.end; ++unit) {
            const auto [left, right] = std::minmax({PlaceOf(unit, false), PlaceOf(unit, true)});
            if (!stretches.empty() && left <= stretches.back().second && right >= stretches.back().first) {
                stretches.back().first = std::min(stretches.back().first, left);
                stretches.back().second = std::max(stretches.back().second, right);
            } else if (left < right) {
                stretches.emplace_back(left, right);
            }
        }
        return stretches;
    }

private:
    int m_count;
    decltype(&ScriptStringFree) m_free;
    decltype(&ScriptStringOut) m_out;
    decltype(&ScriptStringCPtoX) m_placeOf;
    decltype(&ScriptStringGetLogicalWidths) m_widths;
    SCRIPT_STRING_ANALYSIS m_analysis = nullptr;
};

NamePainter::NamePainter() : m_library(Win32::LoadSystemModule(L"usp10.dll")) {}

bool NamePainter::Draw(HDC context, const RECT& bounds, const DrawnName& name, const NameColours& colours) const {
    const Line whole(m_library, context, name.text);
    const Line ellipsis(m_library, context, L"\u2026");
    if (!whole || !ellipsis) return false;
    const FittedName fitted =
        FitName(name.text, name.changed, whole.Edges(), bounds.right - bounds.left, ellipsis.Edges().back());
    const Line line(m_library, context, fitted.text);
    if (!line) return false;

    TEXTMETRICW metrics = {};
    GetTextMetricsW(context, &metrics);
    const int top = (bounds.top + bounds.bottom - metrics.tmHeight) / 2;
    const LONG stroke = std::max(1, GetDeviceCaps(context, LOGPIXELSX) / USER_DEFAULT_SCREEN_DPI);
    const LONG baseline = top + metrics.tmAscent;
    const COLORREF ground = GetSysColor(colours.ground);
    const COLORREF ink = GetSysColor(colours.ink);
    const COLORREF mark = ReadableColour(GetSysColor(colours.mark), ground, ink);
    const auto clipped = [&](LONG left, LONG upper, LONG right, LONG lower) {
        return RECT{std::max(bounds.left, left), std::max(bounds.top, upper), std::min(bounds.right, right),
                    std::min(bounds.bottom, lower)};
    };
    FillWith(context, bounds, ground);
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, ink);
    line.Draw(context, bounds.left, top, bounds);
    for (const size_t blank : HiddenBlanks(fitted.text)) {
        const auto [left, right] = std::minmax({line.PlaceOf(blank, false), line.PlaceOf(blank, true)});
        const LONG from = bounds.left + left;
        const LONG to = std::max(from + 3 * stroke, bounds.left + right);
        const LONG upper = baseline - metrics.tmAscent / 3;
        FillWith(context, clipped(from, baseline, to, baseline + stroke), mark);
        FillWith(context, clipped(from, upper, from + stroke, baseline), mark);
        FillWith(context, clipped(to - stroke, upper, to, baseline), mark);
    }
    if (!name.isMarked) return true;
    SetTextColor(context, mark);
    for (const auto& [left, right] : line.StretchesOf(fitted.changed)) {
        const LONG from = bounds.left + left;
        const LONG to = bounds.left + right;
        const RECT part = clipped(from, bounds.top, to + stroke, bounds.bottom);
        FillWith(context, clipped(from, bounds.top, to, bounds.bottom), ground);
        // The line itself again, and once more a stroke to the right: heavier, and not a pixel wider.
        for (const LONG step : {0L, stroke}) line.Draw(context, bounds.left + step, top, part);
        FillWith(context, clipped(from, baseline + stroke, to, baseline + 2 * stroke), mark);
    }
    if (name.changed.begin == name.changed.end) {
        // A wedge: here something was taken out.
        const size_t last = fitted.text.size() - 1;
        const bool isAtEnd = fitted.changed.begin > last;
        const LONG at = bounds.left + line.PlaceOf(isAtEnd ? last : fitted.changed.begin, isAtEnd);
        FillWith(context, clipped(at - stroke, bounds.top + stroke, at + stroke, baseline + stroke), mark);
        FillWith(context, clipped(at - 3 * stroke, baseline + stroke, at + 3 * stroke, baseline + 2 * stroke), mark);
    }
    return true;
}

}  // namespace BatchRename
