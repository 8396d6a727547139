#include "fileutils/commands.h"
#include "fileutils/ids.h"
#include "win32/text.h"

#include <algorithm>
#include <ctime>
#include <optional>

#include "fileutils/conversions/text_conversion.h"
#include "fileutils/file_run.h"
#include "fileutils/fileutils_texts.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "textio/data_reader.h"
#include "textio/replace_file.h"
#include "textio/told_streams.h"
#include "win32/file_name.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

constexpr uint32_t kBlockSize = 64 * 1024;  // bytes; with what becomes of them, in the processor's own cache
constexpr uint32_t kLargestChoice = 8;
constexpr uint32_t kProposedChoice = 3;  // the fourth: a tab is 4 spaces
constexpr uint32_t kTabWidthLimit = 21;  // a host that returns such a number did not show our choices

struct ConversionOfId {
    uint32_t id;
    TextConversion conversion;
};
constexpr ConversionOfId kConversions[] = {
    {CommandId::LineEndsToLf, TextConversion::ToLf},
    {CommandId::LineEndsToCrLf, TextConversion::ToCrLf},
    {CommandId::LineEndsToCr, TextConversion::ToCr},
    {CommandId::TabsToSpaces, TextConversion::TabsToSpaces},
};

/// The number of spaces for a tab; nothing when the choice was cancelled.
std::optional<uint32_t> AskForTabWidth(IHostServices& host) {
    const Owned<IChoiceList> choices(host.CreateChoiceList());
    if (!choices) return std::nullopt;
    for (uint32_t width = 1; width <= kLargestChoice; ++width) choices->AddChoice(std::to_wstring(width).c_str());
    ChoiceRequest request = {};
    FillField(request.prompt, HostText(host, Text::TabWidthPrompt));
    FillField(request.title, HostText(host, Text::TabWidthTitle));
    request.choices = choices.get();
    request.position = kProposedChoice;
    if (!host.ShowChoiceDialog(&request)) return std::nullopt;
    const wchar_t* const chosen = choices->GetChoice(request.position);
    const uint32_t width = chosen ? Win32::LeadingNumber<uint32_t>(chosen) : kTabWidthLimit;
    if (width >= kTabWidthLimit) return std::nullopt;
    return width;
}

void ConvertBytes(QVUtils::DataReader& reader, TextConverter converter, QVUtils::DataWriter& writer) {
    const auto block = std::make_unique_for_overwrite<char[]>(kBlockSize);
    const auto result = std::make_unique_for_overwrite<char[]>(converter.LargestResult(kBlockSize));
    for (;;) {
        uint32_t size = 0;
        reader.Read(block.get(), kBlockSize, size);
        if (size == 0) return;
        QVUtils::WriteAll(writer, result.get(), converter.Convert(block.get(), size, result.get()));
    }
}

/// Converts one file. The converted form is complete on disk before it takes the file's place. When it cannot (the file
/// is in use, or read-only) both stay: the work is done, and can be put in place once the file is free. When another
/// program has saved the file meanwhile, its content stays and the converted form of the old one goes.
/// @throws QVUtilsException, also when there is a file of the temporary name, and when the user cancels (code 1223)
void ConvertFile(IHostServices& host, const std::wstring& path, const TextConverter& converter,
                 const QVUtils::TellProgress& tell) {
    std::wstring temporary = path + L".temp" + std::to_wstring(std::time(nullptr));
    // A file of such a long name is converted all the same; only what cannot take its place does not stay.
    if (Win32::FileNameOf(temporary).size() > Win32::kLongestName) temporary.clear();
    QVUtils::FileDataReader reader(path);
    QVUtils::FileReplacement replacement({.target = path, .mayOverwrite = true, .temporaryPath = temporary});
    replacement.Begin(QVUtils::OriginalOf(reader, path));
    QVUtils::Progress progress(tell);
    progress.BeginPart(100);
    QVUtils::ToldDataReader told(reader, reader.GetFileSize(), progress);
    ConvertBytes(told, converter, replacement.GetWriter());
    reader.Close();
    const uint32_t error = replacement.Commit();
    if (error == 0)
        host.Log(kLogLevel, LogKind::Success, L"[Convert text] - Converted file : %s", path.c_str());
    else if (replacement.IsInPlace())
        host.Log(kLogLevel, LogKind::Failure,
                 L"[Convert text] - Unable to delete the backup (.bak) of the file : %s ( ErrorCode : %d )",
                 path.c_str(), error);
    else
        host.Log(kLogLevel, LogKind::Failure,
                 L"[Convert text] - Failed to replace file : %s ( ErrorCode : %d ), its converted form is %s",
                 path.c_str(), error, temporary.c_str());
}

void LogFailure(IHostServices& host, const std::wstring& path, const std::wstring& reason, uint32_t error) {
    if (reason.empty())
        host.Log(kLogLevel, LogKind::Failure, L"[Convert text] - Failed to convert file : %s ( ErrorCode : %d )",
                 path.c_str(), error);
    else
        host.Log(kLogLevel, LogKind::Failure, L"[Convert text] - Failed to convert file : %s ( %s, ErrorCode : %d )",
                 path.c_str(), reason.c_str(), error);
}

}  // namespace

uint32_t RunTextConversion(IHostServices& host, uint32_t id) {
    const auto row = std::ranges::find(kConversions, id, &ConversionOfId::id);
    if (row == std::end(kConversions)) return 0;
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Files);
    if (!list || list->GetCount() == 0) return 1;
    const std::wstring question = FormatText(HostText(host, Text::ConvertQuestion), {list->GetCount()});
    if (host.MessageBox(question.c_str(), HostText(host, Text::ConvertTitle), MB_YESNO | MB_ICONQUESTION) != IDYES)
        return 1;
    uint32_t tabWidth = 0;
    if (row->conversion == TextConversion::TabsToSpaces) {
        const std::optional<uint32_t> chosen = AskForTabWidth(host);
        if (!chosen) return 1;
        tabWidth = *chosen;
    }
    const TextConverter converter(row->conversion, tabWidth);
    ForEachFile(
        host, *list, Text::ConvertTitle,
        [&](const std::wstring& path, IFileOperations&, const QVUtils::TellProgress& tell) {
            ConvertFile(host, path, converter, tell);
        },
        [&](const std::wstring& path, const std::wstring& reason, uint32_t error) {
            LogFailure(host, path, reason, error);
        });
    return 1;
}

}  // namespace FileUtils
