// The skeleton of a run, with a work that only says what it was given.
#include "fileutils/file_run.h"

#include <atomic>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>

#include "fileutils/fileutils_texts.h"
#include "support/services_of_host.h"

namespace {

using namespace FileUtils;
namespace MarkKind = Quorvane::SDK::MarkKind;

TEST(ForEachFile, EndsWhereTheUserStopsIt) {
    QVTest::ServicesOfHost host(QV_HOST_PROGRAM, {});
    const QVTest::TemporaryFolder folder;
    Quorvane::SDK::IFileList* const list = host.Services().CreateFileList();
    for (const wchar_t* name : {L"a.txt", L"b.txt"}) list->AddItem(&host.Select(folder.Write(name, "")));
    std::atomic<bool> isCancelled = false;
    host.State().progressWatch.isCancelled = &isCancelled;
    std::string told;
    ForEachFile(
        host.Services(), *list, Text::ConvertTitle,
        [&](const std::wstring&, Quorvane::SDK::IFileOperations&, const QVUtils::TellProgress& tell) {
            told += "work ";
            isCancelled = true;
            QVUtils::Progress(tell).Advance(1, 2);
        },
        [&](const std::wstring&, const std::wstring&, uint32_t error) { told += std::to_string(error); });
    list->Release();
    EXPECT_EQ(told, "work 1223");
}

/// In the folder: a.txt, b.txt, and taken.x, c.x beside c.txt. Processing "b.txt" fails.
std::string Transcript(FileRun run, const wchar_t* answers, bool cancelsAfterFirst) {
    QVHost::HostOptions options;
    std::wistringstream words(answers);
    options.answers.assign(std::istream_iterator<std::wstring, wchar_t>(words), {});
    QVTest::ServicesOfHost host(QV_HOST_PROGRAM, std::move(options));
    const QVTest::TemporaryFolder folder;
    Quorvane::SDK::IFileList* const list = host.Services().CreateFileList();
    for (const wchar_t* name : {L"a.txt", L"b.txt", L"c.txt", L"d.txt"})
        list->AddItem(&host.Select(folder.Write(name, "")));
    folder.Write(L"c.x", "");
    folder.Write(L"d.x", "");
    std::string told;
    std::atomic<bool> isCancelled = false;
    host.State().progressWatch.isCancelled = &isCancelled;
    const auto tell = [&](const char* what, const FileTask& task) {
        const std::wstring_view source = Win32::FileNameOf(task.source), target = Win32::FileNameOf(task.target);
        told += std::string(what) + ' ' + std::string(source.begin(), source.end()) + '>' +
                std::string(target.begin(), target.end()) + (task.mayOverwrite ? "!" : "") + ' ';
    };
    run.title = Text::SortTitle;
    run.overwriteQuestion = Text::SortOverwrite;
    run.process = [&](const FileTask& task) {
        tell("do", task);
        isCancelled = cancelsAfterFirst;
        EXPECT_EQ(task.tell(50), !cancelsAfterFirst) << "the wish to stop is heard inside a file";
        return Win32::FileNameOf(task.source) == L"b.txt" ? FileResult::Failed : FileResult::Done;
    };
    run.tellBadTarget = [&](const FileTask& task) { tell("bad", task); };
    run.tellSkipped = [&](const FileTask& task) { tell("skip", task); };
    run.summary = [&](const FileRunResult& result) {
        told += "summary " + std::to_string(result.done) + ' ' + std::to_string(result.failed) + ' ' +
                std::to_string(result.skipped) + ' ';
        return RunSummary{L"", 0};
    };
    const FileRunResult result = RunOverFiles(host.Services(), *list, run);
    list->Release();
    if (result.isCancelled) told += "cancelled ";
    // What the host was asked, and handed to mark.
    std::istringstream notes(host.Notes());
    for (std::string line; std::getline(notes, line);) {
        if (line.starts_with("[question]")) told += "? ";
        for (const std::string mark : {"done", "failed", "skipped"})
            if (line.starts_with('[' + mark + ']')) told += mark + ' ' + line.substr(line.rfind('\\') + 1) + ' ';
    }
    return told;
}

FileRun To(const wchar_t* saveAs, const std::vector<FileMark>& marks, bool isSilent = false,
           bool mayOverwrite = false) {
    FileRun run;
    if (*saveAs) run.saveAs = saveAs;
    run.marks = marks;
    run.isSilent = isSilent;
    run.mayOverwrite = mayOverwrite;
    return run;
}

TEST(RunOverFiles, AsksTellsAndMarks) {
    const std::vector<FileMark> two = {{MarkKind::Done, true}, {MarkKind::Failed, false}};
    const std::vector<FileMark> three = {{MarkKind::Done, true}, {MarkKind::Failed, true}, {MarkKind::Skipped, false}};
    const std::string inPlace = "do a.txt>a.txt do b.txt>b.txt ";
    const struct {
        const char* why;
        FileRun run;
        const wchar_t* answers;
        std::string expected;
        bool cancelsAfterFirst = false;
    } cases[] = {
        {"in place, where nothing is asked", To(L"", two), L"ok",
         inPlace + "do c.txt>c.txt do d.txt>d.txt summary 3 1 0 done a.txt done c.txt done d.txt failed b.txt ? "},
        {"silently: what exists stays, and no list is for it", To(L"*.x", two, true), L"",
         "do a.txt>a.x do b.txt>b.x skip c.txt>c.x skip d.txt>d.x done a.txt failed b.txt failed c.txt failed d.txt "},
        {"with a list for it", To(L"*.x", three), L"no no ok",
         "do a.txt>a.x do b.txt>b.x skip c.txt>c.x skip d.txt>d.x summary 1 1 2 "
         "? ? done a.txt failed b.txt skipped c.txt skipped d.txt ? "},
        {"yes holds for the rest", To(L"*.x", two), L"yes ok",
         "do a.txt>a.x do b.txt>b.x do c.txt>c.x! do d.txt>d.x! summary 3 1 0 "
         "? done a.txt done c.txt done d.txt failed b.txt ? "},
        {"cancel ends it", To(L"*.x", two), L"cancel", "do a.txt>a.x do b.txt>b.x cancelled ? "},
        {"so does the progress display", To(L"", two), L"", "do a.txt>a.txt cancelled ", true},
        {"overwriting asks nothing", To(L"*.x", two, true, true), L"",
         "do a.txt>a.x! do b.txt>b.x! do c.txt>c.x! do d.txt>d.x! done a.txt done c.txt done d.txt failed b.txt "},
        {"a name that no file can have", To(L"nul", two, true), L"",
         "bad a.txt>nul bad b.txt>nul bad c.txt>nul bad d.txt>nul "
         "failed a.txt failed b.txt failed c.txt failed d.txt "}};
    for (const auto& c : cases) EXPECT_EQ(Transcript(c.run, c.answers, c.cancelsAfterFirst), c.expected) << c.why;
}

}  // namespace
