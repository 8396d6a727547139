#include "findreplace/process_file.h"

#include <new>

#include "findreplace/matching.h"
#include "textio/replace_file.h"
#include "textio/text_file.h"
#include "win32/files.h"

namespace QVFindAndReplace {
namespace {

namespace ErrorCode = QVUtils::ErrorCode;
using QVUtils::EncodingKind;
using QVUtils::QVUtilsException;

/// Where the work on one file reads from and writes to.
struct Job {
    const std::wstring& source;
    const std::wstring& target;
    uint32_t options;
    Request& request;
    IFindAndReplaceCallback& callback;
};

template <class CharT>
void Save(const Job& job, const TextDocumentT<CharT>& document) {
    const bool isSaveAs = (job.options & Option::SaveAs) != 0;
    const bool mayOverwrite = isSaveAs && (job.options & Option::Overwrite) != 0;
    if (isSaveAs && !mayOverwrite && Win32::Exists(job.target))
        throw QVUtilsException(ErrorCode::FileExists, "Target file already exists");
    QVUtils::ReplaceRequest replace;
    replace.source = job.source;
    replace.target = job.target;
    replace.mayOverwrite = mayOverwrite;
    replace.keepBackup = (job.options & Option::KeepBackup) != 0;
    replace.dropBackup = (job.options & Option::DropBackup) != 0;
    // A file that cannot be written is expected to be there as if nothing had happened.
    replace.restoreOnFailure = true;
    const uint32_t backupError =
        QVUtils::ReplaceFileContent(replace, [&](QVUtils::DataWriter& writer) { document.Save(writer); });
    if (backupError != 0) job.callback.ReportErrorA("Unable to delete the backup of the file", backupError);
}

template <class CharT>
int64_t ProcessDocument(const Job& job, QVUtils::TextFile& file, EncodingKind kind) {
    TextDocumentT<CharT> document(kind);
    document.Load(file);
    file.Close();
    const uint32_t changes = FindAndReplace(document, job.request, &job.callback);
    // Cancelled while over several lines: nothing is saved, yet the file counts one change and the run goes on. That is
    // what this path has always answered, and it stays.
    if (job.callback.IsCancelled()) return 1;
    if (changes > 0) Save(job, document);
    return changes;
}

int64_t Process(const Job& job) {
    QVUtils::TextFile file(job.source);
    switch (file.GetKind()) {
        case EncodingKind::NotText:
            job.callback.ReportErrorA("File is not detected as a text file. Unsupported file format",
                                      ErrorCode::NotATextFile);
            return 0;
        case EncodingKind::Utf16: return ProcessDocument<WideChar>(job, file, EncodingKind::Utf16);
        case EncodingKind::Utf8: return ProcessDocument<char>(job, file, EncodingKind::Utf8);
        case EncodingKind::CodePage: break;
    }
    const bool forceUtf8 = (job.options & Option::ForceUtf8) != 0;
    return ProcessDocument<char>(job, file, forceUtf8 ? EncodingKind::Utf8 : EncodingKind::CodePage);
}

}  // namespace

int64_t ProcessFile(const std::wstring& source, const std::wstring& target, uint32_t options, Request& request,
                    IFindAndReplaceCallback& callback) {
    callback.SetCurrentFile(source.c_str());
    const auto fail = [&](const char* text, uint32_t code) {
        callback.ReportErrorA(text, code);
        return kFileFailed;
    };
    int64_t result = kFileFailed;
    try {
        result = Process({source, target, options, request, callback});
    } catch (const QVUtilsException& failure) {
        result = failure.GetErrorCode() == ErrorCode::Cancelled ? kFileCancelled
                                                                : fail(failure.what(), failure.GetErrorCode());
    } catch (const std::bad_alloc&) {
        result = fail("Out of memory", ErrorCode::OutOfMemory);
    } catch (const std::exception& failure) {
        result = fail(*failure.what() ? failure.what() : "Out of memory", ErrorCode::OutOfMemory);
    }
    callback.EndOfFile();
    return result;
}

}  // namespace QVFindAndReplace
