// Profiles' values: an XML service whose texts are the input's, whatever they hold. What is read must make a rule, and
// come back from being written.
#include "batchrename/profiles.h"

#include <list>

#include "fuzz/input.h"

namespace QVFuzz {
namespace {

using namespace Quorvane::SDK;

uint32_t Copy(const std::wstring& text, wchar_t* buffer, uint32_t capacity) {
    // A text that fills the buffer leaves no place for the closing zero, as from a host that forgets it.
    const size_t length = text.copy(buffer, capacity);
    if (length < capacity) buffer[length] = 0;
    return static_cast<uint32_t>(length);
}

/// An element with one child of each name that is asked for, as long as the input lasts.
class Element final : public IXmlElement {
public:
    Element(Input& input, int depth) : m_input(input), m_depth(depth) {}

    uint32_t GetName(wchar_t* buffer, uint32_t capacity) override { return Copy(L"x", buffer, capacity); }
    IXmlElement* FirstChild(const wchar_t*) override {
        if (m_depth > 3 || m_input.IsAtEnd() || m_input.Byte() % 8 == 0) return nullptr;
        return &m_children.emplace_back(m_input, m_depth + 1);
    }
    IXmlElement* NextSibling(const wchar_t*) override {
        if (m_input.IsAtEnd()) return nullptr;
        return &m_children.emplace_back(m_input, m_depth);
    }
    uint32_t GetText(wchar_t* buffer, uint32_t capacity) override {
        return Copy(Widened<wchar_t>(m_input.Text()), buffer, capacity);
    }
    bool GetAttribute(const wchar_t*, wchar_t* buffer, uint32_t capacity) override {
        if (m_input.IsAtEnd()) return false;
        Copy(Widened<wchar_t>(m_input.Text()), buffer, capacity);
        return true;
    }
    IXmlElement* AddChild(const wchar_t*) override { return &m_children.emplace_back(m_input, m_depth + 1); }
    bool SetText(const wchar_t* text) override { return text != nullptr; }
    bool SetAttribute(const wchar_t*, const wchar_t* value) override { return value != nullptr; }

private:
    Input& m_input;
    int m_depth;
    std::list<Element> m_children;
};

}  // namespace

void RunProfiles(Bytes bytes) {
    if (bytes.size() > 4096) return;
    Input input(bytes);
    Element root(input, 0);
    for (const BatchRename::RenameProfile& profile : BatchRename::ReadProfiles(root)) {
        const BatchRename::RuleDefinition rule = BatchRename::RuleOf(profile);
        const BatchRename::RenameProfile again = BatchRename::ProfileOf(profile.name, rule);
        Require(again.items == profile.items && again.nameTemplate == profile.nameTemplate &&
                    again.counter == profile.counter,
                "a profile is the rule that it stands for");
        try {
            BatchRename::RenameRule compiled;
            compiled.SetRule(rule, {});
            BatchRename::BatchRenameItem row;
            row.currentName = L"a.txt";
            compiled.Compute(row);
        } catch (const BatchRename::RegexFault&) {
        }
    }
}

}  // namespace QVFuzz
