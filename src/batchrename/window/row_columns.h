// row_columns.h - the columns of the list of rows: their headers, and who gets which width.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>

#include "batchrename/model/row_order.h"
#include "sdk/words.h"
#include "win32/windows.h"

namespace BatchRename {

inline constexpr size_t kColumnCount = 4;  // as RowColumn

/// In pixels.
struct ColumnWishes {
    std::array<std::optional<int>, kColumnCount> fixed;  // by the user
    int status = 0;                                      // what these two would need to show every text
    int location = 0;
    int smallestName = 0;
};

/// Status and location get what they need, within reason, and the names share the rest.
std::array<int, kColumnCount> FitColumns(int available, const ColumnWishes& wishes);

class RowColumns {
public:
    /// Adds the columns to the list, which has a font.
    void Create(HWND list, Quorvane::SDK::Words say);
    /// The list has another font. Widths that were given by hand, in pixels, are forgotten.
    void Measure();
    /// What the two columns that are as wide as their words may have to show. The status grows only: names that move
    /// to and fro while a rule is typed cannot be read.
    void SetTexts(std::span<const std::wstring> status, const std::wstring& location);
    /// Other rows come: their words may be shorter.
    void ForgetTexts() { m_wishes.status = 0; }
    void Fit();
    /// The header has another width for a column, by the user's hand; or none any more.
    void OnUsersWidth(int column, bool isGiven);

    /// The header over the new names tells when they are not up to date, and the one over the others when they are
    /// those before a run.
    void ShowState(bool isOutdated, bool isAfterRun);
    void ShowOrder(const RowOrder& order) const;

    /// The order that a click on this column's header asks for.
    static RowKey KeyOf(int column);

private:
    int WidthOf(const std::wstring& text) const;

    HWND m_list = nullptr;
    Quorvane::SDK::Words m_say;
    ColumnWishes m_wishes;
};

}  // namespace BatchRename
