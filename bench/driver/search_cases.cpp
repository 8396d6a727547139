// search_cases.cpp - find and replace, on three kinds of text and in three encodings.
#include "cases.h"

namespace Bench {
namespace {

/// What is looked for in a text, and what it becomes. Each pattern once as the library takes it, once as an expression.
struct Words {
    TextSet set;
    std::string hit;     // at the end of a line
    std::string absent;  // and nearly there
    std::string fewWildcard, fewExpression;
    std::string manyWildcard, manyExpression;
    std::string pairs[3][2];
    std::string nextLine, nextLineBecomes;
};
const Words kWords[] = {
    {TextSet::Random,
     "needle",
     "needlx",
     "nee?le",
     "nee.le",
     "request*ms",
     "request.*ms",
     {{"worker", "thread"}, {"request", "call"}, {"needle", "pin"}},
     "2026-03-07",
     "2027-04-08"},
    {TextSet::Logs,
     "rejected",
     "rejects",
     "rej?cted",
     "rej.cted",
     "took*ms",
     "took.*ms",
     {{"node", "host"}, {"request", "call"}, {"rejected", "refused"}},
     "2026-03-07",
     "2027-04-08"},
    {TextSet::Prose,
     "internationally",
     "internationals",
     "inter?ationally",
     "inter.ationally",
     "intern*lly",
     "intern.*lly",
     {{"government", "administration"}, {"because", "by reason of"}, {"internationally", "abroad"}},
     "Chapter 07",
     "Section 08"},
};

std::string Quoted(const std::string& text) {
    return "'" + text + "'";
}

/// In a copy of a sample.
Case Find(const std::string& what, double limit, const std::string& sample, uint64_t bytes,
          const std::string& parameters, std::vector<Peer> peers) {
    for (Peer& peer : peers) peer.command += " > $W/out.peer";
    return {.name = what,
            .limit = limit,
            .amount = bytes,
            .unit = "B",
            .samples = {sample},
            .prepare = "ln -sf $D/" + sample + " $W/in.txt; rm -f $W/out.ours",
            .preparePeer = kFreshPeer,
            .ours = "exec $QV call FindAndReplace SILENT FILE=$W/in.txt TARGET=out.ours " + parameters,
            .peers = std::move(peers),
            .compare = kEqual,
            .memoryLimit = kBlocksOnly};
}

const char* const kInput = " $W/in.txt";

Peer Sed(const std::string& commands) {
    return {"GNU sed", "sed", "LC_ALL=C sed " + commands + kInput};
}
Peer Perl(const std::string& commands) {
    return {"perl", "perl", "perl -0777 -pe " + Quoted(commands) + kInput};
}
Peer Sd(const std::string& arguments) {
    return {"sd", "sd", "sd " + arguments + " <" + kInput};
}
/// Each tool that replaces a text, or an expression.
std::vector<Peer> Tools(const std::string& find, const std::string& replacement, bool isText) {
    const std::string substitution = "s/" + find + "/" + replacement + "/g";
    // It says that there was no hit, which is no failure here.
    const std::string ripgrep = "{ rg --no-config -E none -a -N -I --passthru " + std::string(isText ? "-F" : "") +
                                " -r " + replacement + " " + Quoted(find) + kInput + " || [ $? = 1 ]; }";
    return {Sed(Quoted(substitution)),
            Perl(substitution),
            Sd((isText ? "-s " : "") + Quoted(find) + " " + Quoted(replacement)),
            {"ripgrep", "rg", ripgrep}};
}

/// With a zero after each letter, for tools that know bytes alone.
std::string Wide(const std::string& ascii) {
    std::string wide;
    for (const char letter : ascii) wide += letter + std::string("\\x00");
    return wide;
}
std::vector<Peer> WideTools(const std::string& find, const std::string& replacement) {
    const std::string begin = "iconv -f UTF-16 -t UTF-8 $W/in.txt | ";
    const std::string end = " | iconv -f UTF-8 -t UTF-16";
    return {
        {"iconv, sed, iconv", "iconv", begin + "LC_ALL=C sed s/" + find + "/" + replacement + "/g" + end},
        {"iconv, sd, iconv", "sd", begin + "sd -s " + find + " " + replacement + end},
        {"sed on bytes", "sed", "LC_ALL=C sed " + Quoted("s/" + Wide(find) + "/" + Wide(replacement) + "/g") + kInput},
        Perl("s/" + Wide(find) + "/" + Wide(replacement) + "/g")};
}

void AddSet(std::vector<Case>& cases, const Words& words, const Data& data) {
    const std::string set = NameOf(words.set);
    const std::string in = " in " + set;
    const std::string few = set + ".few.", many = set + ".many.";
    const uint64_t text = data.TextBytes();
    const std::string find = "FIND=" + words.hit + " REPLACEWITH=";
    cases.push_back(Find("few hits" + in, 0.6, few + "lf", text, find + "pin", Tools(words.hit, "pin", true)));
    cases.push_back(
        Find("a hit a line" + in, 0.9, many + "lf", text, find + "longer-pin", Tools(words.hit, "longer-pin", true)));
    cases.push_back(Find("no hit" + in, 0.5, few + "lf", text, "FIND=" + words.absent + " REPLACEWITH=pin",
                         Tools(words.absent, "pin", true)));
    cases.back().compare = "[ ! -e $W/out.ours ] && cmp $W/in.txt $W/out.peer";
    cases.push_back(Find("wildcard, few hits" + in, 0.6, few + "lf", text,
                         "WILDCARD " + Quoted("FIND=" + words.fewWildcard) + " REPLACEWITH=pin",
                         Tools(words.fewExpression, "pin", false)));
    cases.push_back(Find("wildcard, a hit a line" + in, 0.8, many + "lf", text,
                         "WILDCARD " + Quoted("FIND=" + words.manyWildcard) + " REPLACEWITH=pin",
                         Tools(words.manyExpression, "pin", false)));
    std::string finds, replacements, each, chain;
    for (const auto& [from, to] : words.pairs) {
        finds += (finds.empty() ? "" : "\\n") + from;
        replacements += (replacements.empty() ? "" : "\\n") + to;
        each += "s/" + from + "/" + to + "/g;";
        const bool isFirst = chain.empty();
        chain.append(isFirst ? "sd -s " : " | sd -s ").append(from).append(" ").append(Quoted(to));
        if (isFirst) chain.append(" <").append(kInput);
    }
    cases.push_back(Find("three pairs" + in, 0.8, many + "lf", text,
                         "MODE=Many " + Quoted("FIND=" + finds) + " " + Quoted("REPLACEWITH=" + replacements),
                         {Sed(Quoted(each)), Perl(each), {"sd", "sd", chain}}));
    const std::string over = words.hit + "\\n" + words.nextLine, becomes = "pin\\n" + words.nextLineBecomes;
    cases.push_back(Find("over line breaks" + in, 0.8, many + "lf", text,
                         "MODE=Multiline " + Quoted("FIND=" + over) + " " + Quoted("REPLACEWITH=" + becomes),
                         {Sed("-z " + Quoted("s/" + over + "/" + becomes + "/g")),
                          Perl("s/" + over + "/" + becomes + "/g"), Sd(Quoted(over) + " " + Quoted(becomes))}));
    cases.push_back(Find("one line" + in, 1.0, many + "line", data.LineBytes(), find + "longer-pin",
                         Tools(words.hit, "longer-pin", true)));
    // Held whole, as it was and as it becomes.
    cases.back().memoryLimit = kIdleProcess + 26 * data.LineBytes() / 10;
    cases.back().peers.pop_back();  // it would add a break
    cases.back().holdsWork = true;
    cases.push_back(
        Find("few hits in UTF-8 " + set, 0.6, few + "utf8", text, find + "pin", Tools(words.hit, "pin", true)));
    cases.push_back(
        Find("few hits in UTF-16 " + set, 0.3, few + "utf16", text, find + "pin", WideTools(words.hit, "pin")));
    cases.push_back(
        Find("a hit a line in UTF-16 " + set, 0.3, many + "utf16", text, find + "pin", WideTools(words.hit, "pin")));
}

/// What no find and replace on this platform can do without: the same calls of the system, and nothing between them.
Case CopyAlone(const std::string& sample, uint64_t bytes, std::vector<Peer> tools) {
    Case copy = Find("a copy alone of " + sample, 1.0, sample, bytes, "", std::move(tools));
    copy.ours = "exec $WINE $LOOPS/copy_loop.exe Z:$W/in.txt Z:$W/out.ours";
    copy.compare = "cmp $W/in.txt $W/out.ours";
    return copy;
}

}  // namespace

void AddSearches(std::vector<Case>& cases, const Data& data) {
    for (const Words& words : kWords) AddSet(cases, words, data);
    cases.push_back(CopyAlone("logs.few.lf", data.TextBytes(), Tools("rejected", "pin", true)));
    cases.push_back(CopyAlone("logs.few.utf16", data.TextBytes(), WideTools("rejected", "pin")));
}

}  // namespace Bench
