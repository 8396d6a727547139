#include "host/columns_command.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "host/text.h"

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

void PrintTable(Output& output, const ColumnValues& values, const Items& items) {
    std::vector<Cells> rows = {Heading(values, kPathName, &PropertyColumns::Column::displayName)};
    for (const auto& item : items) rows.push_back(RowOf(values, *item));
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

void PrintCsv(Output& output, const ColumnValues& values, const Items& items) {
    PrintCsvRow(output, Heading(values, kPathKey, &PropertyColumns::Column::key));
    for (const auto& item : items) PrintCsvRow(output, RowOf(values, *item));
}

nlohmann::ordered_json JsonValue(FileItem& item, const ColumnValues::Column& column) {
    const std::optional<std::wstring> value = ColumnValues::ValueOf(item, column);
    if (!value) return nullptr;
    if (IsNumber(column)) return std::stoull(*value);
    return ToUtf8(*value);
}

void PrintJson(Output& output, const ColumnValues& values, const Items& items) {
    output.Line(L"[");
    for (size_t at = 0; at < items.size(); ++at) {
        nlohmann::ordered_json row;
        row[ToUtf8(kPathKey)] = ToUtf8(items[at]->Path());
        for (const ColumnValues::Column& column : values.Columns())
            row[ToUtf8(column.definition->key)] = JsonValue(*items[at], column);
        output.Line(L"  " + FromUtf8(row.dump()).value_or(L"") + (at + 1 < items.size() ? L"," : L""));
    }
    output.Line(L"]");
}

}  // namespace

void PrintColumns(Output& output, const ColumnValues& values, const Items& items, ColumnFormat format) {
    switch (format) {
        case ColumnFormat::Table: PrintTable(output, values, items); break;
        case ColumnFormat::Csv: PrintCsv(output, values, items); break;
        case ColumnFormat::Json: PrintJson(output, values, items); break;
    }
}

}  // namespace QVHost
