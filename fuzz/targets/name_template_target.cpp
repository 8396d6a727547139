// Rename rules: templates cut, compiled and evaluated for names of any kind.
#include "rename/name_template.h"

#include "fuzz/input.h"
#include "rename/rename_rule.h"
#include "win32/file_name.h"

namespace QVFuzz {
namespace {

using namespace BatchRename;

class Properties final : public IPropertySource {
public:
    bool GetProperty(const BatchRenameItem& row, const std::wstring& name, const std::wstring& format,
                     std::wstring& value) override {
        value = name + L"\r\n:" + format + row.currentName;
        return name.size() % 5 != 4;
    }
};

}  // namespace

void RunNameTemplate(Bytes bytes) {
    if (bytes.size() > 4096) return;
    Input input(bytes);
    const uint8_t options = input.Byte();
    RuleDefinition rule;
    rule.nameTemplate = Widened<wchar_t>(input.Text());
    rule.extensionTemplate = Widened<wchar_t>(input.Text());
    for (const TemplatePiece& piece : SplitTemplate(rule.nameTemplate))
        Require(!piece.isBracketed || piece.text.ends_with(L']'), "a bracketed piece ends in its bracket");
    CompileTemplate(rule.nameTemplate, false);
    rule.options = options;
    rule.counter = {static_cast<int32_t>(input.Number()), static_cast<int32_t>(input.Number()),
                    static_cast<int32_t>(input.Number())};
    Properties properties;
    RenameRule evaluated(&properties);
    evaluated.SetRule(rule, CalendarTime());
    BatchRenameItem row;
    while (!input.IsAtEnd()) {
        row.location = Widened<wchar_t>(input.Text());
        row.currentName = Widened<wchar_t>(input.Text());
        row.isFolder = (options & 1) != 0;
        evaluated.Compute(row);
        const Win32::NameCheck check = Win32::CheckFileName(row.newName);
        Require(check.position <= row.newName.size(), "a name's fault lies in it");
        Win32::DescribeNameFault(row.newName, check);
    }
}

}  // namespace QVFuzz
