#include "host/xml/xml_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace QVHost {
namespace {

// The system's parsers go no deeper, and their time grows with the square of the attributes of one element.
constexpr size_t kDeepest = 250;
constexpr size_t kMostAttributes = 500;

bool IsBlank(char byte) {
    return kXmlBlanks.find(byte) != std::string_view::npos;
}

/// "Char" of XML 1.0.
bool IsCharacter(uint32_t character) {
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    return character < 0xD800 || (character >= 0xE000 && character < 0xFFFE) ||
           (character >= 0x10000 && character <= 0x10FFFF);
}

/// The bytes of the character that `text` begins with; 0 when it begins with none that XML can hold.
size_t CharacterSize(std::string_view text) {
    constexpr std::array<uint32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<uint8_t>(text[0]);
    if (first < 0x80) return IsCharacter(first) ? 1 : 0;
    const size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC0 || first >= 0xF8 || text.size() < size) return 0;
    uint32_t character = first & (0x7Fu >> size);
    for (const char next : text.substr(1, size - 1)) {
        if ((next & 0xC0) != 0x80) return 0;
        character = character << 6 | (next & 0x3F);
    }
    return character >= kSmallest[size] && IsCharacter(character) ? size : 0;
}

/// Letters, digits and marks of ASCII as XML 1.0 has them; all other characters pass.
bool IsNameByte(char byte, bool isFirst) {
    const auto unit = static_cast<uint8_t>(byte);
    if (unit >= 0x80 || unit == '_' || unit == ':') return true;
    if ((unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z')) return true;
    return !isFirst && ((unit >= '0' && unit <= '9') || unit == '-' || unit == '.');
}

class Checker {
public:
    explicit Checker(std::string_view text) : m_text(text) {}

    std::optional<XmlFault> Run() {
        if (m_text.find_first_not_of(kXmlBlanks) == std::string_view::npos) return XmlFault{0, "it holds no XML"};
        for (size_t at = 0; at < m_text.size();) {
            const size_t size = CharacterSize(m_text.substr(at));
            if (size == 0) return XmlFault{at, "this is no character of UTF-8, or one that XML cannot hold"};
            at += size;
        }
        while (!m_fault && m_at < m_text.size()) Next();
        if (!m_fault && !m_open.empty()) Fail(m_text.size(), "the file ends inside an element");
        if (!m_fault && !m_hasRoot) Fail(m_text.size(), "the file ends before an element begins");
        return m_fault;
    }

private:
    void Fail(size_t offset, const char* reason) {
        if (!m_fault) m_fault = {offset, reason};
    }

    std::string_view Rest() const { return m_text.substr(std::min(m_at, m_text.size())); }

    void Next() {
        const std::string_view rest = Rest();
        if (rest[0] != '<')
            Text(rest.substr(0, rest.find('<')));
        else if (rest.starts_with("<!--"))
            Comment();
        else if (rest.starts_with("<![CDATA["))
            Section();
        else if (rest.starts_with("<?"))
            Instruction();
        else if (rest.starts_with("<!"))
            DocumentType();
        else if (rest.starts_with("</"))
            EndTag();
        else
            StartTag();
    }

    /// Goes to the end of `mark`.
    bool PassUpTo(std::string_view mark, size_t from, const char* otherwise) {
        const size_t end = m_text.find(mark, m_at + from);
        if (end == std::string_view::npos)
            Fail(m_at, otherwise);
        else
            m_at = end + mark.size();
        return !m_fault;
    }

    void Text(std::string_view text) {
        const size_t other = text.find_first_not_of(kXmlBlanks);
        if (m_open.empty() && other != std::string_view::npos) Fail(m_at + other, "text stands outside the root");
        if (const size_t end = text.find("]]>"); end != std::string_view::npos)
            Fail(m_at + end, "]]> stands in a text");
        References(text);
        m_at += text.size();
    }

    void Comment() {
        if (PassUpTo("--", 4, "a comment does not end") && !Rest().starts_with('>'))
            Fail(m_at - 2, "-- stands in a comment");
        ++m_at;
    }

    void Section() {
        if (m_open.empty()) Fail(m_at, "text stands outside the root");
        PassUpTo("]]>", 9, "a CDATA section does not end");
    }

    void Instruction() {
        const size_t begin = m_at;
        m_at += 2;
        const std::string_view name = Name("an instruction has no name");
        const bool isDeclaration =
            name.size() == 3 && (name[0] | 0x20) == 'x' && (name[1] | 0x20) == 'm' && (name[2] | 0x20) == 'l';
        if (isDeclaration && (begin > 0 || name != "xml")) Fail(begin, "a declaration stands at the beginning alone");
        PassUpTo("?>", 0, "an instruction does not end");
    }

    void DocumentType() {
        const std::string_view type = XmlDocumentTypeAt(Rest());
        if (!Rest().starts_with("<!DOCTYPE") || m_hasRoot || m_hasType)
            Fail(m_at, "no declaration can stand here");
        else if (type.empty())
            Fail(m_at, "the document type does not end");
        m_hasType = true;
        m_at += type.size();
    }

    void EndTag() {
        const size_t begin = m_at;
        m_at += 2;
        const std::string_view name = Name("an end tag has no name");
        SkipBlanks();
        if (!Rest().starts_with('>')) Fail(m_at, "an end tag does not end");
        ++m_at;
        if (m_open.empty() || m_open.back() != name)
            Fail(begin, "this ends another element than the one that is open");
        else
            m_open.pop_back();
    }

    void StartTag() {
        const size_t begin = m_at++;
        if (m_open.empty() && m_hasRoot) Fail(begin, "a second root begins");
        m_open.push_back(Name("a tag has no name"));
        if (m_open.size() > kDeepest) Fail(begin, "elements are nested too deeply");
        m_hasRoot = true;
        m_attributes.clear();
        while (!m_fault && Attribute()) {
        }
        const bool isWhole = Rest().starts_with("/>");
        if (!isWhole && !Rest().starts_with('>')) Fail(m_at, "a tag is not as it should be");
        m_at += isWhole ? 2 : 1;
        if (isWhole) m_open.pop_back();
        std::ranges::sort(m_attributes);
        if (std::ranges::adjacent_find(m_attributes) != m_attributes.end())
            Fail(begin, "an attribute stands here twice");
        if (m_attributes.size() > kMostAttributes) Fail(begin, "an element has too many attributes");
    }

    /// False where no further one begins.
    bool Attribute() {
        const size_t begin = m_at;
        SkipBlanks();
        if (m_at == m_text.size() || !IsNameByte(m_text[m_at], true)) return false;
        if (m_at == begin) Fail(m_at, "a blank is missing");
        m_attributes.push_back(Name(""));
        SkipBlanks();
        if (Rest().starts_with('='))
            ++m_at;
        else
            Fail(m_at, "an attribute has no value");
        SkipBlanks();
        const char quote = m_at < m_text.size() ? m_text[m_at] : '\0';
        if (quote != '"' && quote != '\'') Fail(m_at, "an attribute's value stands in no quotes");
        if (m_fault) return false;
        const size_t first = m_at + 1;
        if (!PassUpTo({&quote, 1}, 1, "an attribute's value does not end")) return false;
        const std::string_view value = m_text.substr(first, m_at - 1 - first);
        if (const size_t sign = value.find('<'); sign != std::string_view::npos)
            Fail(first + sign, "< stands in an attribute's value");
        References(value);
        return !m_fault;
    }

    /// Each & of a part of the text begins a reference.
    void References(std::string_view part) {
        const auto begin = static_cast<size_t>(part.data() - m_text.data());
        for (size_t at = 0; !m_fault && (at = part.find('&', at)) != std::string_view::npos; ++at) {
            const std::string_view name = part.substr(at + 1, part.find(';', at) - at - 1);
            if (part.find(';', at) == std::string_view::npos || !IsReference(name))
                Fail(begin + at, "& begins no reference that means something");
        }
    }

    bool IsReference(std::string_view name) const {
        if (name.starts_with('#')) return IsCharacter(NumberOf(name.substr(1)));
        if (name.empty() || !IsNameByte(name[0], true)) return false;
        if (!std::ranges::all_of(name, [](char byte) { return IsNameByte(byte, false); })) return false;
        return m_hasType || std::ranges::find(kXmlEntities, name) != kXmlEntities.end();
    }

    /// 0, which is no character, for what is no number.
    static uint32_t NumberOf(std::string_view digits) {
        const bool isHex = digits.starts_with('x');
        if (isHex) digits.remove_prefix(1);
        uint32_t number = 0;
        for (const char digit : digits) {
            const char lower = static_cast<char>(digit | 0x20);
            const bool isLetter = isHex && lower >= 'a' && lower <= 'f';
            if (!isLetter && (digit < '0' || digit > '9')) return 0;
            number = number * (isHex ? 16 : 10) + static_cast<uint32_t>(isLetter ? lower - 'a' + 10 : digit - '0');
            if (number > 0x10FFFF) return 0;
        }
        return number;
    }

    std::string_view Name(const char* otherwise) {
        const size_t begin = m_at;
        while (m_at < m_text.size() && IsNameByte(m_text[m_at], m_at == begin)) ++m_at;
        if (m_at == begin) Fail(begin, otherwise);
        return m_text.substr(begin, m_at - begin);
    }

    void SkipBlanks() {
        while (m_at < m_text.size() && IsBlank(m_text[m_at])) ++m_at;
    }

    std::string_view m_text;
    size_t m_at = 0;
    std::vector<std::string_view> m_open;        // names
    std::vector<std::string_view> m_attributes;  // of the last tag
    bool m_hasRoot = false;
    bool m_hasType = false;
    std::optional<XmlFault> m_fault;
};

}  // namespace

std::optional<XmlFault> FindXmlFault(std::string_view text) {
    return Checker(text).Run();
}

XmlPlace PlaceIn(std::string_view text, size_t offset) {
    XmlPlace place;
    for (size_t at = 0; at < std::min(offset, text.size()); ++at) {
        const bool isSecond = text[at] == '\n' && at > 0 && text[at - 1] == '\r';
        if (isSecond) continue;
        if (text[at] == '\r' || text[at] == '\n') {
            ++place.line;
            place.column = 1;
        } else if ((text[at] & 0xC0) != 0x80) {
            ++place.column;
        }
    }
    return place;
}

}  // namespace QVHost
