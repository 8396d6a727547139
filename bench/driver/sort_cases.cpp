// sort_cases.cpp - sorting, against GNU sort with all processors.
#include "cases.h"

namespace Bench {
namespace {

/// What is sorted, and what a line of it takes at most, in bytes.
struct SortSample {
    std::string name;
    std::string file;
    uint64_t lineBytes;
};
constexpr uint64_t kSortMemory = 32;                // bytes a line besides its text
constexpr uint64_t kSortOverhead = 12 * kMegabyte;  // for buffers and threads

const char* const kSort = "LC_ALL=C sort --parallel=$(nproc) -s ";
const char* const kSameLines =
    "[ \"$(LC_ALL=C sort $W/out.ours | md5sum)\" = \"$(LC_ALL=C sort $W/out.peer | md5sum)\" ]";

Case Sort(const std::string& order, const SortSample& sample, uint64_t lines, double limit,
          const std::string& parameters, const std::string& peerOptions) {
    return {.name = "sort " + sample.name + ", " + order,
            .limit = limit,
            .amount = lines,
            .unit = "lines",
            .samples = {sample.file},
            .prepare = "ln -sf $D/" + sample.file + " $W/in.txt; rm -f $W/out.ours",
            .preparePeer = kFreshPeer,
            .ours = "exec $QV call SortLines SILENT FILE=$W/in.txt TARGET=out.ours " + parameters,
            .peers = {{"GNU sort", "sort", kSort + peerOptions + " $W/in.txt -o $W/out.peer"}},
            .compare = kEqual,
            .memoryLimit = kIdleProcess + kSortOverhead + (kSortMemory + sample.lineBytes) * lines,
            .holdsWork = true};
}

/// Where the two orders differ in details, both have to have the same lines.
Case SortAlmost(Case job, const std::string& peer) {
    job.peers.front().name = peer;
    job.compare = kSameLines;
    return job;
}

Case InLanguage(Case job) {
    job.peers.front().command.replace(0, std::string("LC_ALL=C").size(), "LOCPATH=$D/locale LC_ALL=en_US.UTF-8");
    job.prepare +=
        "; [ -e $D/locale/en_US.UTF-8 ] || "
        "{ mkdir -p $D/locale; localedef -i en_US -f UTF-8 $D/locale/en_US.UTF-8; }";
    return SortAlmost(std::move(job), "GNU sort, en_US");
}

void AddTextSorts(std::vector<Case>& cases, const SortSample& sample, uint64_t lines) {
    cases.push_back(Sort("by line", sample, lines, 0.8, "", ""));
    cases.push_back(SortAlmost(Sort("ignoring case", sample, lines, 0.8, "IGNORECASE", "-f"), "GNU sort -f"));
    cases.push_back(InLanguage(Sort("in a language", sample, lines, 0.6, "LANGUAGEORDER", "")));
    cases.push_back(
        SortAlmost(Sort("naturally", sample, lines, 0.6, "LANGUAGEORDER NATRUALNUMORDER", "-V"), "GNU sort -V"));
}

void AddWide(std::vector<Case>& cases, uint64_t lines) {
    const SortSample wide = {"UTF-16 words", "sort-words.utf16", 144};
    cases.push_back(Sort("by line", wide, lines, 0.8, "", ""));
    cases.back().peers = {
        {"iconv, GNU sort, iconv", "iconv",
         std::string("iconv -f UTF-16 -t UTF-8 $W/in.txt | ") + kSort + "| iconv -f UTF-8 -t UTF-16 > $W/out.peer"}};
}

}  // namespace

void AddSorts(std::vector<Case>& cases, const Data& data) {
    const uint64_t lines = data.SortLines();
    const SortSample table = {"a table", "sort-table.lf", 54};
    const SortSample logs = {"logs", "sort-logs.lf", 80};
    for (const SortSample& sample :
         {table, logs, SortSample{"words", "sort-words.lf", 72}, SortSample{"alike", "sort-alike.lf", 68}})
        AddTextSorts(cases, sample, lines);
    AddWide(cases, lines);
    cases.push_back(Sort("by number", table, lines, 0.8, "SORTBY=item 'ITEMSEP=;' ITEM=2 SORTAS=num", "-t';' -k2,2n"));
    cases.push_back(Sort("by number", logs, lines, 0.8, "SORTBY=item 'ITEMSEP= ' ITEM=5 SORTAS=num", "-t' ' -k5,5n"));
    cases.push_back(Sort("by date", table, lines, 0.3, "SORTBY=item 'ITEMSEP=;' ITEM=3 SORTAS=date DATEFORMAT=%d.%m.%Y",
                         "-t';' -k3.7,3.10n -k3.4,3.5n -k3.1,3.2n"));
    cases.push_back(Sort("by date", logs, lines, 0.3, "SORTBY=item 'ITEMSEP= ' ITEM=1 SORTAS=date DATEFORMAT=%Y-%m-%d",
                         "-t' ' -k1.1,1.4n -k1.6,1.7n -k1.9,1.10n"));
    cases.push_back(Sort("by name", table, lines, 0.6, "SORTBY=item 'ITEMSEP=;' ITEM=4 LANGUAGEORDER NATRUALNUMORDER",
                         "-t';' -k4,4V"));
}

}  // namespace Bench
