#include "cases.h"

namespace Bench {
namespace {

constexpr uint64_t kMegabyte = 1'000'000;
constexpr uint64_t kIdleProcess = 13 * kMegabyte;
// Whatever goes through a file in blocks: the same for every size.
constexpr uint64_t kBlocksOnly = kIdleProcess + 12 * kMegabyte;

const char* const kFreshPeer = "rm -f $W/out.peer";
const char* const kEqual = "cmp $W/out.ours $W/out.peer";
const char* const kSameLines =
    "[ \"$(LC_ALL=C sort $W/out.ours | md5sum)\" = \"$(LC_ALL=C sort $W/out.peer | md5sum)\" ]";

/// Find and replace in a copy of a sample.
Case Find(std::string name, const std::string& sample, uint64_t bytes, Peer peer, const std::string& parameters,
          const std::string& peerFilter) {
    return {std::move(name),
            std::move(peer),
            bytes,
            "B",
            {sample},
            "ln -sf $D/" + sample + " $W/in.txt; rm -f $W/out.ours",
            kFreshPeer,
            "exec $QV call FindAndReplace SILENT FILE=$W/in.txt TARGET=out.ours " + parameters,
            peerFilter + " > $W/out.peer",
            kEqual,
            kBlocksOnly};
}

/// What is sorted, and what a line of it takes at most, in bytes.
struct SortSample {
    std::string name;
    std::string file;
    uint64_t lineBytes;
};
constexpr uint64_t kSortMemory = 32;                // bytes a line besides its text
constexpr uint64_t kSortOverhead = 12 * kMegabyte;  // for buffers and threads

/// In some order, against GNU sort with all processors.
Case Sort(const std::string& order, const SortSample& sample, uint64_t lines, double limit,
          const std::string& parameters, const std::string& peerOptions) {
    return {"sort " + sample.name + ", " + order,
            {"GNU sort", "sort", limit, "half of it"},
            lines,
            "lines",
            {sample.file},
            "ln -sf $D/" + sample.file + " $W/in.txt; rm -f $W/out.ours",
            kFreshPeer,
            "exec $QV call SortLines SILENT FILE=$W/in.txt TARGET=out.ours " + parameters,
            "LC_ALL=C sort -s " + peerOptions + " $W/in.txt -o $W/out.peer",
            kEqual,
            kIdleProcess + kSortOverhead + (kSortMemory + sample.lineBytes) * lines};
}

/// A menu command that changes a file in its place; the other tool writes beside it and moves the result over it.
Case Convert(std::string name, const std::string& sample, uint64_t bytes, Peer peer, const std::string& command,
             const std::string& peerFilter) {
    return {std::move(name),
            std::move(peer),
            bytes,
            "B",
            {sample},
            "cp $D/" + sample + " $W/out.ours",
            "cp $D/" + sample + " $W/out.peer",
            "exec $QV " + command,
            peerFilter + " < $W/out.peer > $W/new && mv $W/new $W/out.peer",
            kEqual,
            kBlocksOnly};
}

void AddSearches(std::vector<Case>& cases, const Data& data) {
    const uint64_t text = data.TextBytes();
    cases.push_back(Find("literal, 100 hits", "few.txt", text, {"GNU sed", "sed", 1.0, "ripgrep"},
                         "FIND=needle REPLACEWITH=pin", "sed s/needle/pin/g $W/in.txt"));
    cases.push_back(Find("literal, a hit a line", "many.txt", text, {"GNU sed", "sed", 0.8, "sd"},
                         "FIND=needle REPLACEWITH=longer-pin", "sed s/needle/longer-pin/g $W/in.txt"));
    Case none = Find("literal, no hit", "few.txt", text, {"GNU sed", "sed", 0.5, "grep"}, "FIND=needlx REPLACEWITH=pin",
                     "sed s/needlx/pin/g $W/in.txt");
    none.compare = "[ ! -e $W/out.ours ]";
    cases.push_back(none);
    cases.push_back(Find("wildcard, 100 hits", "few.txt", text, {"GNU sed", "sed", 0.65, "0.8 of sd"},
                         "WILDCARD FIND=nee?le REPLACEWITH=pin", "sed s/nee.le/pin/g $W/in.txt"));
    cases.push_back(Find("wildcard, a hit a line", "many.txt", text, {"perl", "perl", 0.65, "0.8 of sd"},
                         "WILDCARD 'FIND=request*ms' REPLACEWITH=pin", "perl -pe 's/request.*ms/pin/g' $W/in.txt"));
    cases.push_back(Find("three pairs", "many.txt", text, {"GNU sed", "sed", 0.65, "0.45"},
                         "MODE=Many 'FIND=worker\\nrequest\\nneedle' 'REPLACEWITH=thread\\ncall\\npin'",
                         "sed -e s/worker/thread/g -e s/request/call/g -e s/needle/pin/g $W/in.txt"));
    cases.push_back(Find("over line breaks", "many.txt", text, {"perl -0777", "perl", 1.0, "sd"},
                         "MODE=Multiline 'FIND=needle\\n2026-03-07' 'REPLACEWITH=pin\\n2027-04-08'",
                         "perl -0777 -pe 's/needle\\n2026-03-07/pin\\n2027-04-08/g' $W/in.txt"));
    cases.push_back(Find("UTF-16, 100 hits", "few16.txt", text, {"iconv, sed, iconv", "iconv", 0.7, "perl on bytes"},
                         "FIND=needle REPLACEWITH=pin",
                         "iconv -f UTF-16 -t UTF-8 $W/in.txt | sed s/needle/pin/g | iconv -f UTF-8 -t UTF-16"));
    cases.push_back(Find("UTF-16, a hit a line", "many16.txt", text,
                         {"iconv, sed, iconv", "iconv", 0.7, "perl on bytes"}, "FIND=needle REPLACEWITH=pin",
                         "iconv -f UTF-16 -t UTF-8 $W/in.txt | sed s/needle/pin/g | iconv -f UTF-8 -t UTF-16"));
    cases.push_back(Find("one line, 600,000 hits", "line.txt", data.LineBytes(), {"GNU sed", "sed", 1.0, "sd"},
                         "FIND=needle REPLACEWITH=longer-pin", "sed s/needle/longer-pin/g $W/in.txt"));
    // Held whole, as it was and as it becomes.
    cases.back().memoryLimit = kIdleProcess + 26 * data.LineBytes() / 10;
}

void AddTextSorts(std::vector<Case>& cases, const SortSample& sample, uint64_t lines) {
    cases.push_back(Sort("by line", sample, lines, 0.8, "", ""));
    // Where capital letters are the only difference, the two orders are not the same.
    cases.push_back(Sort("ignoring case", sample, lines, 0.8, "IGNORECASE", "-f"));
    cases.back().compare = kSameLines;
    // Nor are they in every detail of a language.
    Case language = Sort("in a language", sample, lines, 0.6, "LANGUAGEORDER", "");
    language.peer.name = "GNU sort, en_US";
    language.peerCommand = "LOCPATH=$D/locale LC_ALL=en_US.UTF-8 sort -s $W/in.txt -o $W/out.peer";
    language.prepare +=
        "; [ -e $D/locale/en_US.UTF-8 ] || "
        "{ mkdir -p $D/locale; localedef -i en_US -f UTF-8 $D/locale/en_US.UTF-8; }";
    language.compare = kSameLines;
    cases.push_back(language);
    cases.push_back(Sort("naturally", sample, lines, 0.6, "LANGUAGEORDER NATRUALNUMORDER", "-V"));
    cases.back().peer.name = "GNU sort -V";
    cases.back().compare = kSameLines;
}

void AddSorts(std::vector<Case>& cases, const Data& data) {
    const uint64_t lines = data.SortLines();
    const SortSample table = {"a table", "sort.txt", 54};
    const SortSample logs = {"logs", "sort-logs.txt", 80};
    for (const SortSample& sample :
         {table, logs, SortSample{"words", "sort-words.txt", 72}, SortSample{"alike", "sort-alike.txt", 68}})
        AddTextSorts(cases, sample, lines);
    cases.push_back(Sort("by number", table, lines, 0.8, "SORTBY=item 'ITEMSEP=;' ITEM=2 SORTAS=num", "-t';' -k2,2n"));
    cases.push_back(Sort("by number", logs, lines, 0.8, "SORTBY=item 'ITEMSEP= ' ITEM=5 SORTAS=num", "-t' ' -k5,5n"));
    cases.push_back(Sort("by date", table, lines, 0.3, "SORTBY=item 'ITEMSEP=;' ITEM=3 SORTAS=date DATEFORMAT=%d.%m.%Y",
                         "-t';' -k3.7,3.10n -k3.4,3.5n -k3.1,3.2n"));
    cases.push_back(Sort("by date", logs, lines, 0.3, "SORTBY=item 'ITEMSEP= ' ITEM=1 SORTAS=date DATEFORMAT=%Y-%m-%d",
                         "-t' ' -k1.1,1.4n -k1.6,1.7n -k1.9,1.10n"));
    cases.push_back(Sort("by name", table, lines, 0.6, "SORTBY=item 'ITEMSEP=;' ITEM=4 LANGUAGEORDER NATRUALNUMORDER",
                         "-t';' -k4,4V"));
    cases.back().peer.name = "GNU sort -V";
}

void AddConversions(std::vector<Case>& cases, const Data& data) {
    const uint64_t text = data.TextBytes();
    cases.push_back(Convert("to LF", "crlf.txt", text, {"tr", "tr", 0.75, "1.15 of a copy"},
                            "--answer yes command 30101 $W/out.ours", "tr -d '\\r'"));
    cases.push_back(Convert("to CR LF", "few.txt", text, {"GNU sed", "sed", 0.75, "1.15 of a copy"},
                            "--answer yes command 30102 $W/out.ours", "sed 's/$/\\r/'"));
    cases.push_back(Convert("tabs to spaces", "tabs.txt", text, {"sd", "sd", 0.7, "0.55"},
                            "--answer yes --answer 4 command 30110 $W/out.ours", "sd '\\t' '    '"));
    const std::string encode =
        "perl -MMIME::Base64 -e 'binmode STDIN; while (read(STDIN, $b, 57 * 1024)) "
        "{ print encode_base64($b, \"\\r\\n\") }' < $D/bytes.bin > $W/out.peer";
    const std::string decode = "perl -MMIME::Base64 -ne 'print decode_base64($_)' < $W/body > $W/out.peer";
    cases.push_back({"Base64 encode",
                     {"perl MIME", "perl", 0.95, "1.3 of a copy"},
                     text,
                     "B",
                     {"bytes.bin"},
                     "ln -sf $D/bytes.bin $W/bytes.bin; rm -f $W/bytes.bin.b64",
                     kFreshPeer,
                     "exec $QV --answer yes command 30210 $W/bytes.bin",
                     encode,
                     "base64 -di $W/out.peer | cmp - $W/bytes.bin && "
                     "sed '1,/^\\r*$/d' $W/bytes.bin.b64 | base64 -di | cmp - $W/bytes.bin",
                     kBlocksOnly});
    cases.push_back({"Base64 decode",
                     {"perl MIME", "perl", 0.95, "1.3 of a copy"},
                     text,
                     "B",
                     {"bytes.bin"},
                     "rm -f $W/bytes.bin; [ -e $W/in.b64 ] || { base64 -w 76 $D/bytes.bin > $W/body; "
                     "{ printf '%s\\n' MIME-Version:\\ 1.0 "
                     "'Content-Type: application/octet-stream; name=\"bytes.bin\"' "
                     "'Content-Transfer-Encoding: base64' ''; cat $W/body; } > $W/in.b64; }",
                     kFreshPeer,
                     "exec $QV --answer yes command 30211 $W/in.b64",
                     decode,
                     "cmp $W/bytes.bin $D/bytes.bin",
                     kBlocksOnly});
}

/// Each gets a copy of a folder of files of its own.
std::string CopyOf(const std::string& sample, const std::string& copy) {
    return "rm -rf $W/" + copy + "; cp -r $D/" + sample + " $W/" + copy + "; sed \"s|^$D/" + sample + "|$W/" + copy +
           "|\" $D/" + sample + ".list > $W/" + copy + ".list";
}

/// The same rule, the same verdicts, the same lines. A name that differs from another in case alone is taken too, so
/// each folder has to be read.
const char* const kPreviewInPerl = R"(
    while (<>) {
        chomp;
        -e or die "$_ is missing";
        my $is_folder = -d _;
        my ($folder, $name) = m{^(.*/)([^/]*)$};
        my ($base, $extension) = !$is_folder && $name =~ /^(.*)(\.[^.]*)$/ ? ($1, $2) : ($name, "");
        $base = lc sprintf("%06d_%s", ++$counter, $base);
        $extension = lc $extension;
        s/draft/final/i for $base, $extension;
        push @rows, [$folder, $name, "$base$extension"];
        $listed{lc "$folder$name"} = 1;
        ++$wanted{lc "$folder$base$extension"};
    }
    for (@rows) {
        my ($folder, $name, $new_name) = @$_;
        unless ($read{$folder}++) {
            opendir my $entries, $folder or die "$folder: $!";
            $there{lc "$folder$_"} = 1 for readdir $entries;
        }
        my $target = lc "$folder$new_name";
        my $verdict = $new_name eq $name ? "ignored: the name stays the same"
            : $wanted{$target} > 1 ? "failed: \"$new_name\" would be the name of more than one item"
            : $there{$target} && !$listed{$target} ? "failed: \"$new_name\" is there already"
            : "rename";
        print "$name\t$new_name\t$verdict\n";
    }
)";

void AddFiles(std::vector<Case>& cases, const Data& data) {
    cases.push_back(
        {"small files, a hit each",
         {"bare loop", "sh", 1.5, "1.3"},
         data.SmallFiles(),
         "files",
         {"small"},
         CopyOf("small", "ours"),
         CopyOf("small", "peer"),
         "exec $QV --files-from $W/ours.list call FindAndReplace FILE={} FIND=needle REPLACEWITH=pin DELETE "
         "SILENT",
         "exec $WINE $LOOPS/small_files_loop.exe $W/peer.list",
         "diff -r $W/ours $W/peer",
         kBlocksOnly});
    cases.push_back({"rename files",
                     {"bare loop", "sh", 1.3, "1.15"},
                     data.RenamedFiles(),
                     "files",
                     {"renamed"},
                     CopyOf("renamed", "ours"),
                     CopyOf("renamed", "peer"),
                     "exec $QV --files-from $W/ours.list rename --name '[N]-renamed'",
                     "exec $WINE $LOOPS/rename_loop.exe $W/peer.list",
                     "diff -r $W/ours $W/peer",
                     kIdleProcess + 3000 * data.RenamedFiles()});
    cases.push_back({"rename preview",
                     {"perl", "perl", 0.5, "0.3"},
                     data.PreviewNames(),
                     "names",
                     {"names"},
                     "",
                     "",
                     "exec $QV --files-from $D/names.list rename --preview --name '[C1,1,6]_[N]' --case lower "
                     "--find draft --replace final > $W/out.ours",
                     std::string("perl -e '") + kPreviewInPerl + "' $D/names.list > $W/out.peer",
                     kEqual,
                     kIdleProcess + 300 * data.PreviewNames()});
    cases.push_back({"columns",
                     {"bare loop", "sh", 1.3, "1.1"},
                     data.SmallFiles(),
                     "files",
                     {"small"},
                     "",
                     "",
                     "exec $QV --files-from $D/small.list columns --csv",
                     "exec $WINE $LOOPS/columns_loop.exe $D/small.list",
                     "",
                     kBlocksOnly});
}

}  // namespace

std::vector<Case> AllCases(const Data& data) {
    std::vector<Case> cases;
    AddSearches(cases, data);
    AddSorts(cases, data);
    AddConversions(cases, data);
    AddFiles(cases, data);
    return cases;
}

}  // namespace Bench
