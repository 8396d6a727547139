#include "host/xml/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace QVHost {
namespace {

enum class Kind : uint8_t { Blank, Text, Start, End, Other };  // Other: comments, instructions, the document type

struct Piece {
    Kind kind;
    bool isElementWhole = false;  // a start that is its element's end as well
    bool staysAsItIs = false;     // of a start: with all that its element holds
    std::string_view text;
};

/// `text` from its beginning to the end of `mark`; "" when there is none.
std::string_view UpTo(std::string_view text, std::string_view mark, size_t from) {
    const size_t at = text.find(mark, from);
    return at == std::string_view::npos ? std::string_view() : text.substr(0, at + mark.size());
}

/// A tag, in whose values a bracket means nothing; "" when it has no end.
std::string_view TagAt(std::string_view text) {
    for (size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '>') return text.substr(0, at + 1);
        if (text[at] != '"' && text[at] != '\'') continue;
        at = text.find(text[at], at + 1);
        if (at == std::string_view::npos) return {};
    }
    return {};
}

std::string_view CommentAt(std::string_view text) {
    return UpTo(text, "-->", 4);
}

std::string_view InstructionAt(std::string_view text) {
    return UpTo(text, "?>", 2);
}

}  // namespace

std::string_view XmlDocumentTypeAt(std::string_view text) {
    size_t depth = 0;
    for (size_t at = 0; at < text.size();) {
        const std::string_view rest = text.substr(at);
        std::string_view piece = rest.substr(0, 1);
        if (rest.starts_with("<!--"))
            piece = CommentAt(rest);
        else if (rest.starts_with("<?"))
            piece = InstructionAt(rest);
        else if (rest[0] == '"' || rest[0] == '\'')
            piece = UpTo(rest, piece, 1);
        else if (rest[0] == '<')
            ++depth;
        else if (rest[0] == '>' && --depth == 0)
            return text.substr(0, at + 1);
        if (piece.empty()) return {};
        at += piece.size();
    }
    return {};
}

namespace {

/// True for a start tag with xml:space="preserve".
bool KeepsBlanks(std::string_view tag) {
    size_t at = tag.find_first_of(" \t\r\n/>");
    for (;;) {
        const size_t name = tag.find_first_not_of(kXmlBlanks, at);
        const size_t sign = tag.find('=', name);
        if (sign == std::string_view::npos) return false;
        const size_t quote = tag.find_first_of("\"'", sign);
        const size_t end = quote == std::string_view::npos ? quote : tag.find(tag[quote], quote + 1);
        if (end == std::string_view::npos) return false;
        const std::string_view key = tag.substr(name, tag.find_first_of(" \t\r\n=", name) - name);
        if (key == "xml:space") return tag.substr(quote + 1, end - quote - 1) == "preserve";
        at = end + 1;
    }
}

/// An element that has begun.
struct OpenElement {
    size_t start = 0;  // its piece
    bool keepsBlanks = false;
    bool hasText = false;
    bool hasElement = false;
    bool hasGap = false;  // blanks without a line break follow its last element
    bool lastElementHasText = false;
};

/// What `text` begins with; its text is "" when it has no end.
Piece PieceAt(std::string_view text) {
    if (!text.starts_with('<')) {
        const std::string_view piece = text.substr(0, text.find('<'));
        const bool isBlank = piece.find_first_not_of(kXmlBlanks) == std::string_view::npos;
        return {.kind = isBlank ? Kind::Blank : Kind::Text, .text = piece};
    }
    if (text.starts_with("<!--")) return {.kind = Kind::Other, .text = CommentAt(text)};
    if (text.starts_with("<![CDATA[")) return {.kind = Kind::Text, .text = UpTo(text, "]]>", 9)};
    if (text.starts_with("<?")) return {.kind = Kind::Other, .text = InstructionAt(text)};
    if (text.starts_with("<!")) return {.kind = Kind::Other, .text = XmlDocumentTypeAt(text)};
    const std::string_view tag = TagAt(text);
    if (tag.starts_with("</")) return {.kind = Kind::End, .text = tag};
    return {.kind = Kind::Start, .isElementWhole = tag.ends_with("/>"), .text = tag};
}

/// The pieces of a document, in order, that together are its text.
class Pieces {
public:
    /// False when `text` is no document.
    bool Read(std::string_view text) {
        while (!text.empty()) {
            const Piece piece = PieceAt(text);
            if (piece.text.empty()) return false;
            text.remove_prefix(piece.text.size());
            if (!Add(piece)) return false;
        }
        if (m_keepsAll)
            for (Piece& piece : m_pieces) piece.staysAsItIs = true;
        return m_open.empty();
    }

    const std::vector<Piece>& All() const { return m_pieces; }

private:
    bool Add(const Piece& piece) {
        m_pieces.push_back(piece);
        if (piece.text.starts_with("<!DOCTYPE") && piece.text.find("xml:space") != std::string_view::npos)
            m_keepsAll = true;
        if (piece.kind == Kind::Start) {
            m_open.push_back({.start = m_pieces.size() - 1, .keepsBlanks = KeepsBlanks(piece.text)});
            return !piece.isElementWhole || Close();
        }
        if (piece.kind == Kind::End) return Close();
        if (m_open.empty()) return piece.kind != Kind::Text;
        OpenElement& parent = m_open.back();
        if (piece.kind == Kind::Text) parent.hasText = true;
        if (piece.kind == Kind::Blank)
            parent.hasGap = parent.hasElement && piece.text.find_first_of("\r\n") == std::string_view::npos;
        return true;
    }

    bool Close() {
        if (m_open.empty()) return false;
        const OpenElement element = m_open.back();
        m_open.pop_back();
        m_pieces[element.start].staysAsItIs = element.keepsBlanks || element.hasText || !element.hasElement;
        if (m_open.empty()) return true;
        OpenElement& parent = m_open.back();
        if (parent.hasGap && (parent.lastElementHasText || element.hasText)) parent.hasText = true;
        parent.hasGap = false;
        parent.hasElement = true;
        parent.lastElementHasText = element.hasText;
        return true;
    }

    std::vector<Piece> m_pieces;
    std::vector<OpenElement> m_open;
    bool m_keepsAll = false;
};

struct DocumentLayout {
    bool isReadable = false;
    bool keepsOuterBlanks = true;
};

/// Writes pieces one after the other.
class Writer {
public:
    Writer(std::string_view text, DocumentLayout layout) : m_layout(layout), m_lineBreak(LineBreakOf(text)) {
        m_result.reserve(text.size());
    }

    void Put(const Piece& piece) {
        const bool ends = piece.kind == Kind::End;
        if (ends) --m_depth;
        if (m_fixedDepth == 0) {
            if (piece.kind == Kind::Blank && (m_depth > 0 || !m_layout.keepsOuterBlanks)) return;
            if (m_layout.isReadable) Separate(piece);
        } else if (m_depth < m_fixedDepth) {
            m_fixedDepth = 0;  // with this end
        }
        m_result += piece.text;
        m_isAfterBlank = piece.kind == Kind::Blank;
        if (piece.kind != Kind::Start || piece.isElementWhole) return;
        ++m_depth;
        if (m_fixedDepth == 0 && piece.staysAsItIs) m_fixedDepth = m_depth;
    }

    std::string Result() && { return std::move(m_result); }

private:
    void Separate(const Piece& piece) {
        // Around the root only what directly follows something else gets a line of its own.
        const bool isOutside = m_depth == 0 && piece.kind != Kind::End;
        if (isOutside && (m_result.empty() || m_isAfterBlank || piece.kind == Kind::Blank)) return;
        m_result += m_lineBreak;
        m_result.append(m_depth, '\t');
    }

    DocumentLayout m_layout;
    std::string_view m_lineBreak;
    std::string m_result;
    size_t m_depth = 0;
    size_t m_fixedDepth = 0;  // of the outermost element that stays as it is; 0: outside of such
    bool m_isAfterBlank = false;
};

std::optional<std::string> LaidOut(std::string_view text, DocumentLayout layout) {
    Pieces pieces;
    if (!pieces.Read(text)) return std::nullopt;
    Writer writer(text, layout);
    for (const Piece& piece : pieces.All()) writer.Put(piece);
    return std::move(writer).Result();
}

}  // namespace

std::optional<std::string> CompactXml(std::string_view text) {
    return LaidOut(text, {});
}

std::optional<std::string> ReadableXml(std::string_view text) {
    return LaidOut(text, {.isReadable = true});
}

std::optional<std::string> ContentOfXml(std::string_view text) {
    return LaidOut(text, {.keepsOuterBlanks = false});
}

std::string WithoutEntities(std::string text) {
    std::string result;
    bool hasType = false;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view piece = PieceAt(rest).text;
        if (piece.empty()) return text;
        rest.remove_prefix(piece.size());
        if (piece.starts_with("<!DOCTYPE")) {
            hasType = true;
            continue;
        }
        const bool hasReferences = !piece.starts_with("<!") && !piece.starts_with("<?");
        for (size_t at = 0; at < piece.size(); ++at) {
            result += piece[at];
            if (!hasReferences || piece[at] != '&') continue;
            const std::string_view name = piece.substr(at + 1, piece.find(';', at) - at - 1);
            const bool isPlain = name.starts_with('#') || std::ranges::find(kXmlEntities, name) != kXmlEntities.end();
            if (!isPlain) result += "amp;";
        }
    }
    return hasType ? result : text;
}

std::string_view LineBreakOf(std::string_view text) {
    const size_t at = text.find_first_of("\r\n");
    if (at == std::string_view::npos) return "\n";
    return text.substr(at, text.substr(at).starts_with("\r\n") ? 2 : 1);
}

}  // namespace QVHost
