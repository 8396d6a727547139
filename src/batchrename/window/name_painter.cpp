#include "batchrename/window/name_painter.h"

#include <usp10.h>
#include <algorithm>
#include <numeric>
#include <vector>

#include "ui/system_ink.h"

namespace BatchRename {
namespace {

constexpr DWORD kLayout = SSA_GLYPHS | SSA_FALLBACK | SSA_LINK;

void FillWith(HDC context, const RECT& rect, COLORREF colour) {
    SetDCBrushColor(context, colour);
    FillRect(context, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

}  // namespace

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
    if (!whole) return false;
    const std::vector<int> edges = whole.Edges();
    const int width = bounds.right - bounds.left;
    if (edges.back() <= width) {
        DrawLine(context, bounds, whole, name, colours);
        return true;
    }
    const Line ellipsis(m_library, context, L"\u2026");
    if (!ellipsis) return false;
    const FittedName fitted = FitName(name.text, name.changed, edges, width, ellipsis.Edges().back());
    const Line line(m_library, context, fitted.text);
    if (line) DrawLine(context, bounds, line, {fitted.text, fitted.changed, name.isMarked}, colours);
    return static_cast<bool>(line);
}

/// The marks of one line: its measures and colours.
class NamePainter::Marks {
public:
    Marks(HDC context, const RECT& bounds, const Line& line, const NameColours& colours)
        : m_context(context), m_bounds(bounds), m_line(line), m_ground(GetSysColor(colours.ground)) {
        TEXTMETRICW metrics = {};
        GetTextMetricsW(context, &metrics);
        m_top = (bounds.top + bounds.bottom - metrics.tmHeight) / 2;
        m_baseline = m_top + metrics.tmAscent;
        m_stroke = std::max(1, GetDeviceCaps(context, LOGPIXELSX) / USER_DEFAULT_SCREEN_DPI);
        m_ink = GetSysColor(colours.ink);
        m_mark = Ui::ReadableInk(GetSysColor(colours.mark), m_ground, m_ink);
    }

    void DrawText() const {
        FillWith(m_context, m_bounds, m_ground);
        SetBkMode(m_context, TRANSPARENT);
        SetTextColor(m_context, m_ink);
        m_line.Draw(m_context, m_bounds.left, m_top, m_bounds);
    }

    /// A bracket below the blank.
    void ShowBlank(size_t unit) const {
        const auto [left, right] = std::minmax({m_line.PlaceOf(unit, false), m_line.PlaceOf(unit, true)});
        const LONG end = std::max(left + 3 * m_stroke, static_cast<LONG>(right));
        const LONG upper = m_baseline - (m_baseline - m_top) / 3;
        Fill(left, m_baseline, end, m_baseline + m_stroke, m_mark);
        Fill(left, upper, left + m_stroke, m_baseline, m_mark);
        Fill(end - m_stroke, upper, end, m_baseline, m_mark);
    }

    void ShowChange(ChangedPart part) const {
        SetTextColor(m_context, m_mark);
        for (const auto& [left, right] : m_line.StretchesOf(part)) {
            Fill(left, m_bounds.top, right, m_bounds.bottom, m_ground);
            // The line itself again, and once more a stroke to the right: heavier, and not a pixel wider.
            const RECT within = Clipped(left, m_bounds.top, right + m_stroke, m_bounds.bottom);
            for (const LONG step : {0L, m_stroke}) m_line.Draw(m_context, m_bounds.left + step, m_top, within);
            Fill(left, m_baseline + m_stroke, right, m_baseline + 2 * m_stroke, m_mark);
        }
    }

    /// A wedge: something was taken out before this unit.
    void ShowGap(size_t unit, size_t count) const {
        const bool isAtEnd = unit == count;
        const LONG at = m_line.PlaceOf(isAtEnd ? unit - 1 : unit, isAtEnd);
        Fill(at - m_stroke, m_bounds.top + m_stroke, at + m_stroke, m_baseline + m_stroke, m_mark);
        Fill(at - 3 * m_stroke, m_baseline + m_stroke, at + 3 * m_stroke, m_baseline + 2 * m_stroke, m_mark);
    }

private:
    /// `left` and `right` from the line's left edge.
    RECT Clipped(LONG left, LONG top, LONG right, LONG bottom) const {
        return {m_bounds.left + std::max(0L, left), std::max(m_bounds.top, top),
                std::min(m_bounds.right, m_bounds.left + right), std::min(m_bounds.bottom, bottom)};
    }
    void Fill(LONG left, LONG top, LONG right, LONG bottom, COLORREF colour) const {
        const RECT part = Clipped(left, top, right, bottom);
        if (part.left < part.right) FillWith(m_context, part, colour);
    }

    HDC m_context;
    const RECT& m_bounds;
    const Line& m_line;
    COLORREF m_ground;
    COLORREF m_ink = 0;
    COLORREF m_mark = 0;
    LONG m_top = 0;
    LONG m_baseline = 0;
    LONG m_stroke = 1;  // pixels
};

void NamePainter::DrawLine(HDC context, const RECT& bounds, const Line& line, const DrawnName& name,
                           const NameColours& colours) {
    const Marks marks(context, bounds, line, colours);
    marks.DrawText();
    for (const size_t blank : HiddenBlanks(name.text)) marks.ShowBlank(blank);
    if (!name.isMarked) return;
    if (name.changed.begin == name.changed.end)
        marks.ShowGap(name.changed.begin, name.text.size());
    else
        marks.ShowChange(name.changed);
}

}  // namespace BatchRename
