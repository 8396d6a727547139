#include "cases.h"

namespace Bench {
namespace {

/// A menu command that changes a file in its place; another tool writes beside it and moves the result over it.
Case Convert(const std::string& what, const std::string& sample, uint64_t bytes, double limit,
             const std::string& command, std::vector<Peer> filters) {
    for (Peer& peer : filters) peer.command += " < $W/out.peer > $W/new && mv $W/new $W/out.peer";
    return {.name = what + " in " + sample.substr(0, sample.find('.')),
            .limit = limit,
            .amount = bytes,
            .unit = "B",
            .samples = {sample},
            .prepare = "cp $D/" + sample + " $W/out.ours",
            .preparePeer = "cp $D/" + sample + " $W/out.peer",
            .ours = "exec $QV " + command + " $W/out.ours",
            .peers = std::move(filters),
            .compare = kEqual,
            .memoryLimit = kBlocksOnly};
}

void AddTextConversions(std::vector<Case>& cases, const std::string& set, uint64_t text) {
    cases.push_back(Convert("to LF", set + ".few.crlf", text, 0.7, "--answer yes command 30101",
                            {{"tr", "tr", "tr -d '\\r'"},
                             {"dos2unix", "dos2unix", "dos2unix -q"},
                             {"GNU sed", "sed", "LC_ALL=C sed 's/\\r$//'"},
                             {"perl", "perl", "perl -0777 -pe 's/\\r\\n/\\n/g'"},
                             {"sd", "sd", "sd '\\r\\n' '\\n'"}}));
    cases.push_back(Convert("to CR LF", set + ".few.lf", text, 0.7, "--answer yes command 30102",
                            {{"unix2dos", "unix2dos", "unix2dos -q"},
                             {"GNU sed", "sed", "LC_ALL=C sed 's/$/\\r/'"},
                             {"perl", "perl", "perl -0777 -pe 's/\\n/\\r\\n/g'"},
                             {"sd", "sd", "sd '\\n' '\\r\\n'"}}));
    cases.push_back(Convert("tabs to spaces", set + ".few.tabs", text, 0.6, "--answer yes --answer 4 command 30110",
                            {{"GNU sed", "sed", "LC_ALL=C sed 's/\\t/    /g'"},
                             {"perl", "perl", "perl -0777 -pe 's/\\t/    /g'"},
                             {"sd", "sd", "sd '\\t' '    '"}}));
}

void AddBase64(std::vector<Case>& cases, const std::string& sample, uint64_t bytes) {
    const std::string in = " of " + sample.substr(0, sample.find('.'));
    const std::string link = "ln -sf $D/" + sample + " $W/in.bin";
    cases.push_back({.name = "Base64 encode" + in,
                     .limit = 0.8,
                     .amount = bytes,
                     .unit = "B",
                     .samples = {sample},
                     .prepare = link + "; rm -f $W/in.bin.b64",
                     .preparePeer = kFreshPeer,
                     .ours = "exec $QV --answer yes command 30210 $W/in.bin",
                     .peers = {{"base64", "base64", "base64 -w 76 $W/in.bin > $W/out.peer"},
                               {"perl MIME", "perl",
                                "perl -MMIME::Base64 -e 'binmode STDIN; while (read(STDIN, $b, 57 * 1024)) "
                                "{ print encode_base64($b, \"\\r\\n\") }' < $W/in.bin > $W/out.peer"}},
                     .compare = "base64 -di $W/out.peer | cmp - $W/in.bin && "
                                "sed '1,/^\\r*$/d' $W/in.bin.b64 | base64 -di | cmp - $W/in.bin",
                     .memoryLimit = kBlocksOnly});
    cases.push_back(
        {.name = "Base64 decode" + in,
         .limit = 0.8,
         .amount = bytes,
         .unit = "B",
         .samples = {sample},
         .prepare = "rm -f $W/in.bin; [ -e $W/in.b64 ] || { base64 -w 76 $D/" + sample +
                    " > $W/body; { printf '%s\\n' MIME-Version:\\ 1.0 "
                    "'Content-Type: application/octet-stream; name=\"in.bin\"' "
                    "'Content-Transfer-Encoding: base64' ''; cat $W/body; } > $W/in.b64; }",
         .preparePeer = kFreshPeer,
         .ours = "exec $QV --answer yes command 30211 $W/in.b64",
         .peers = {{"base64", "base64", "base64 -d $W/body > $W/out.peer"},
                   {"perl MIME", "perl", "perl -MMIME::Base64 -ne 'print decode_base64($_)' < $W/body > $W/out.peer"}},
         .compare = "cmp $W/in.bin $W/out.peer",
         .memoryLimit = kBlocksOnly});
}

void AddConversions(std::vector<Case>& cases, const Data& data) {
    for (const char* set : {"random", "logs", "prose"}) AddTextConversions(cases, set, data.TextBytes());
    for (const char* sample : {"bytes.bin", "logs.few.lf", "prose.few.lf"}) AddBase64(cases, sample, data.TextBytes());
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

/// What every call begins with: a program of the platform, the library, its beginning and its end.
Case Start() {
    const std::string tenTimes = "for i in 1 2 3 4 5 6 7 8 9 10; do ";
    return {
        .name = "start",
        .limit = 1.3,
        .amount = 10,
        .unit = "starts",
        .prepare = ": > $W/empty.txt",
        .ours =
            tenTimes + "$QV call FindAndReplace SILENT DELETE FILE=$W/empty.txt FIND=a REPLACEWITH=b || exit 1; done",
        .peers = {{"a program that loads an empty library", "sh", tenTimes + "$WINE $LOOPS/start.exe || exit 1; done"}},
        .memoryLimit = kBlocksOnly};
}

void AddFiles(std::vector<Case>& cases, const Data& data) {
    cases.push_back(Start());
    cases.push_back(
        {.name = "small files, a hit each",
         .limit = 1.5,
         .amount = data.SmallFiles(),
         .unit = "files",
         .samples = {"small"},
         .prepare = CopyOf("small", "ours"),
         .preparePeer = CopyOf("small", "peer"),
         .ours =
             "exec $QV --files-from $W/ours.list call FindAndReplace FILE={} FIND=needle REPLACEWITH=pin DELETE SILENT",
         .peers = {{"bare loop", "sh", "exec $WINE $LOOPS/small_files_loop.exe $W/peer.list"}},
         .compare = "diff -r $W/ours $W/peer",
         .memoryLimit = kBlocksOnly});
    cases.push_back({.name = "rename files",
                     .limit = 1.25,
                     .amount = data.RenamedFiles(),
                     .unit = "files",
                     .samples = {"renamed"},
                     .prepare = CopyOf("renamed", "ours"),
                     .preparePeer = CopyOf("renamed", "peer"),
                     .ours = "exec $QV --files-from $W/ours.list rename --name '[N]-renamed'",
                     .peers = {{"bare loop", "sh", "exec $WINE $LOOPS/rename_loop.exe $W/peer.list"}},
                     .compare = "diff -r $W/ours $W/peer",
                     .memoryLimit = kIdleProcess + 3000 * data.RenamedFiles(),
                     .holdsWork = true});
    cases.push_back(
        {.name = "rename preview",
         .limit = 0.5,
         .amount = data.PreviewNames(),
         .unit = "names",
         .samples = {"names"},
         .ours = "exec $QV --files-from $D/names.list rename --preview --name '[C1,1,6]_[N]' --case lower "
                 "--find draft --replace final > $W/out.ours",
         .peers = {{"perl", "perl", std::string("perl -e '") + kPreviewInPerl + "' $D/names.list > $W/out.peer"}},
         .compare = kEqual,
         .memoryLimit = kIdleProcess + 300 * data.PreviewNames(),
         .holdsWork = true});
    cases.push_back({.name = "columns",
                     .limit = 1.0,
                     .amount = data.SmallFiles(),
                     .unit = "files",
                     .samples = {"small"},
                     .ours = "exec $QV --files-from $D/small.list columns --csv",
                     .peers = {{"bare loop", "sh", "exec $WINE $LOOPS/columns_loop.exe $D/small.list"}},
                     .memoryLimit = kBlocksOnly,
                     .holdsWork = true});
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

std::vector<Case> LargeCases() {
    constexpr uint64_t kBytes = 10'000'000'000;
    // Mostly holes, which the disk need not hold: each megabyte ends in a line of text.
    const std::string make =
        "rm -f $W/out.ours $W/in.txt; perl -e 'open F, \">\", shift; print F \"begin\\n\" x 10000; "
        "for (1 .. 10000) { seek F, $_ * 1000000, 0; print F \"\\na needle and\\ttabs\\r\\n\" }' $W/in.txt";
    const auto large = [&](const std::string& name, const std::string& command) {
        return Case{.name = "10 GB, " + name,
                    .amount = kBytes,
                    .unit = "B",
                    .prepare = make,
                    .ours = "exec $QV " + command,
                    .memoryLimit = 25 * kMegabyte};
    };
    return {large("find and replace",
                  "call FindAndReplace SILENT FILE=$W/in.txt TARGET=out.ours FIND=needle REPLACEWITH=pin"),
            large("to LF", "--answer yes command 30101 $W/in.txt"),
            large("tabs to spaces", "--answer yes --answer 4 command 30110 $W/in.txt"),
            large("Base64 encode", "--answer yes command 30210 $W/in.txt")};
}

}  // namespace Bench
