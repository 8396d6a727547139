#include "host/app/subcommands.h"

#include <algorithm>

#include "host/app/host_text.h"

namespace QVHost {
namespace {

using Cells = std::vector<std::wstring>;
using Items = std::vector<std::shared_ptr<FileItem>>;

constexpr wchar_t kPathKey[] = L"path";
constexpr wchar_t kPathName[] = L"File";
constexpr size_t kGap = 2;  // blanks between the columns of the table

bool IsNumber(const ColumnValues::Column& column) {
    return column.definition->valueType == kNumberValue;
}

/// The values of a file; "" where it has none.
Cells RowOf(const ColumnValues& values, FileItem& item) {
    Cells row = {item.Path()};
    for (const ColumnValues::Column& column : values.Columns())
        row.push_back(ColumnValues::ValueOf(item, column).value_or(L""));
    return row;
}

Cells Heading(const ColumnValues& values, const wchar_t* first, std::wstring PropertyColumns::Column::*text) {
    Cells row = {first};
    for (const ColumnValues::Column& column : values.Columns()) row.push_back(column.definition->*text);
    return row;
}

std::wstring CsvCell(const std::wstring& text) {
    if (text.find_first_of(L",\"\r\n") == std::wstring::npos) return text;
    std::wstring cell = L"\"";
    for (const wchar_t unit : text) cell.append(unit == L'"' ? 2 : 1, unit);
    return cell + L'"';
}

void PrintCsvRow(Output& output, const Cells& row) {
    std::wstring line;
    for (size_t at = 0; at < row.size(); ++at) line += (at > 0 ? L"," : L"") + CsvCell(row[at]);
    output.Line(line);
}

using Next = std::function<FileItem*()>;  // the next file; null after the last one

void PrintTable(Output& output, const ColumnValues& values, const Next& next) {
    std::vector<Cells> rows = {Heading(values, kPathName, &PropertyColumns::Column::displayName)};
    while (FileItem* const item = next()) rows.push_back(RowOf(values, *item));
    std::vector<size_t> widths(values.Columns().size() + 1);
    for (const Cells& row : rows)
        for (size_t at = 0; at < row.size(); ++at) widths[at] = std::max(widths[at], row[at].size());
    for (const Cells& row : rows) {
        std::wstring line;
        for (size_t at = 0; at < row.size(); ++at) {
            const std::wstring fill(widths[at] - row[at].size(), L' ');
            const bool isRight = at > 0 && IsNumber(values.Columns()[at - 1]);
            if (at > 0) line.append(kGap, L' ');
            line += isRight ? fill + row[at] : row[at] + fill;
        }
        line.resize(line.find_last_not_of(L' ') + 1);
        output.Line(line);
    }
}

void PrintCsv(Output& output, const ColumnValues& values, const Next& next) {
    PrintCsvRow(output, Heading(values, kPathKey, &PropertyColumns::Column::key));
    while (FileItem* const item = next()) PrintCsvRow(output, RowOf(values, *item));
}

JsonValue JsonOf(FileItem& item, const ColumnValues::Column& column) {
    const std::optional<std::wstring> value = ColumnValues::ValueOf(item, column);
    if (!value) return nullptr;
    const std::optional<uint64_t> number = Win32::WholeNumber<uint64_t>(*value);
    return IsNumber(column) && number ? JsonValue(*number) : JsonValue(*value);
}

void PrintItems(Output& output, const ColumnValues& values, const Next& next) {
    while (FileItem* const item = next()) {
        JsonFields fields = {{"path", item->Path()}, {"state", L"listed"}};
        for (const ColumnValues::Column& column : values.Columns())
            fields.emplace_back(ToUtf8(column.definition->key), JsonOf(*item, column));
        output.Item(fields);
    }
}

}  // namespace

void PrintColumns(Output& output, const ColumnValues& values, const Items& items, ColumnFormat format,
                  const std::function<bool()>& isStopped) {
    auto at = items.begin();
    const Next next = [&]() -> FileItem* { return at == items.end() || isStopped() ? nullptr : (at++)->get(); };
    switch (format) {
        case ColumnFormat::Table: PrintTable(output, values, next); break;
        case ColumnFormat::Csv: PrintCsv(output, values, next); break;
        case ColumnFormat::Items: PrintItems(output, values, next); break;
    }
}

}  // namespace QVHost
