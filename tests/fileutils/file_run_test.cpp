// The skeleton of a run, with a work that only says what it was given.
#include "fileutils/file_run.h"

#include <atomic>

#include <gtest/gtest.h>

#include "fileutils/fileutils_texts.h"
#include "support/services_of_host.h"

namespace {

using namespace FileUtils;
namespace MarkKind = Quorvane::SDK::MarkKind;

/// In the folder: a.txt, b.txt, and taken.x, c.x beside c.txt. Processing "b.txt" fails.
std::string Transcript(FileRun run, const std::vector<std::wstring>& answers, bool cancelsAfterFirst = false) {
    QVHost::HostOptions options;
    options.answers = answers;
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

TEST(RunOverFiles, AsksTellsAndMarks) {
    const std::vector<FileMark> two = {{MarkKind::Done, true}, {MarkKind::Failed, false}};
    const std::vector<FileMark> three = {{MarkKind::Done, true}, {MarkKind::Failed, true}, {MarkKind::Skipped, false}};
    const std::string inPlace = "do a.txt>a.txt do b.txt>b.txt ";
    const struct {
        const char* why;
        const wchar_t* saveAs;  // null: none
        bool mayOverwrite, isSilent, cancelsAfterFirst;
        std::vector<FileMark> marks;
        std::vector<std::wstring> answers;
        std::string expected;
    } cases[] = {
        {"in place, where nothing is asked",
         nullptr,
         false,
         false,
         false,
         two,
         {L"ok"},
         inPlace + "do c.txt>c.txt do d.txt>d.txt summary 3 1 0 done a.txt done c.txt done d.txt failed b.txt ? "},
        {"silently: what exists stays, and no list is for it",
         L"*.x",
         false,
         true,
         false,
         two,
         {},
         "do a.txt>a.x do b.txt>b.x skip c.txt>c.x skip d.txt>d.x done a.txt failed b.txt failed c.txt failed d.txt "},
        {"with a list for it",
         L"*.x",
         false,
         false,
         false,
         three,
         {L"no", L"no", L"ok"},
         "do a.txt>a.x do b.txt>b.x skip c.txt>c.x skip d.txt>d.x summary 1 1 2 "
         "? ? done a.txt failed b.txt skipped c.txt skipped d.txt ? "},
        {"yes holds for the rest",
         L"*.x",
         false,
         false,
         false,
         two,
         {L"yes", L"ok"},
         "do a.txt>a.x do b.txt>b.x do c.txt>c.x! do d.txt>d.x! summary 3 1 0 "
         "? done a.txt done c.txt done d.txt failed b.txt ? "},
        {"cancel ends it", L"*.x", false, false, false, two, {L"cancel"}, "do a.txt>a.x do b.txt>b.x cancelled ? "},
        {"so does the progress display", nullptr, false, false, true, two, {}, "do a.txt>a.txt cancelled "},
        {"overwriting asks nothing",
         L"*.x",
         true,
         true,
         false,
         two,
         {},
         "do a.txt>a.x! do b.txt>b.x! do c.txt>c.x! do d.txt>d.x! done a.txt done c.txt done d.txt failed b.txt "},
        {"a name that no file can have",
         L"nul",
         false,
         true,
         false,
         two,
         {},
         "bad a.txt>nul bad b.txt>nul bad c.txt>nul bad d.txt>nul "
         "failed a.txt failed b.txt failed c.txt failed d.txt "},
    };
    for (const auto& c : cases) {
        FileRun run;
        if (c.saveAs) run.saveAs = c.saveAs;
        run.mayOverwrite = c.mayOverwrite;
        run.isSilent = c.isSilent;
        run.marks = c.marks;
        EXPECT_EQ(Transcript(run, c.answers, c.cancelsAfterFirst), c.expected) << c.why;
    }
}

}  // namespace
