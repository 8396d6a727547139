// The layouts of an XML document: nothing but blanks comes or goes, and the same layout again changes nothing.
#include "host/xml/xml_text.h"

#include "fuzz/input.h"

namespace QVFuzz {
namespace {

std::string WithoutBlanks(std::string_view text) {
    std::string rest(text);
    std::erase_if(rest, [](char byte) { return std::string_view(" \t\r\n").find(byte) != std::string_view::npos; });
    return rest;
}

}  // namespace

void RunXmlLayout(Bytes bytes) {
    using Lay = std::optional<std::string> (*)(std::string_view);
    const Exact<char> text(Input(bytes).Rest());
    const std::optional<std::string> content = QVHost::ContentOfXml(text.View());
    const std::optional<QVHost::XmlFault> fault = QVHost::FindXmlFault(text.View());
    Require(fault || content, "what is well-formed can be laid out");
    Require(!fault || fault->offset <= text.View().size(), "a fault lies in the text");
    Require(fault || !QVHost::FindXmlFault(QVHost::WithoutEntities(std::string(text.View()))),
            "a parser takes the rest");
    for (const Lay lay : {Lay{QVHost::CompactXml}, Lay{QVHost::ReadableXml}}) {
        const std::optional<std::string> result = lay(text.View());
        Require(result.has_value() == content.has_value(), "a text is a document or it is none");
        if (!result) continue;
        Require(fault || !QVHost::FindXmlFault(*result), "what was well-formed stays so");
        Require(WithoutBlanks(*result) == WithoutBlanks(text.View()), "nothing but blanks came or went");
        Require(lay(*result) == result, "the layout is there already");
        Require(QVHost::ContentOfXml(*result) == content, "the content is the same");
    }
}

}  // namespace QVFuzz
