#include "batchrename/model/preview.h"

#include <algorithm>

namespace BatchRename {
namespace {

using Cancelled = std::function<bool()>;

std::shared_ptr<Preview> BeginPreview(const PreviewRequest& request, const RowSnapshot& rows) {
    auto preview = std::make_shared<Preview>();
    preview->generation = request.generation;
    preview->rows = rows;
    return preview;
}

/// Computes the rows from `first` to `last` into copies: the rows themselves belong to all threads. False when
/// cancelled.
bool ComputeRows(RenameRule& rule, const RenameItems& rows, size_t first, size_t last, const Cancelled& isCancelled,
                 Preview& preview) {
    preview.computed.reserve(last - first);
    for (size_t row = first; row < last; ++row) {
        if (isCancelled()) return false;
        auto copy = std::make_shared<BatchRenameItem>(*rows[row]);
        rule.Compute(*copy);
        if (copy->isLeftOut) ++preview.leftOutCount;
        preview.computed.push_back(std::move(copy));
    }
    return true;
}

/// The rows of the request in the order asked for, or those of its session.
RowSnapshot RowsOf(const PreviewRequest& request, FolderCache& folders, const Cancelled& isCancelled) {
    if (request.session) {
        RestoreRows restore = MakeRestoreRows(
            *request.session, [&](const std::wstring& folder) { return folders.Read(folder); }, folders.Finder());
        if (!request.entries.empty())
            KeepEntries(restore, [&](size_t entry) { return std::ranges::binary_search(request.entries, entry); });
        for (size_t row = 0; row < restore.rows.size(); ++row)
            restore.rows[row]->hostOrder = static_cast<uint32_t>(restore.entries[row]);
        return std::make_shared<const RenameItems>(std::move(restore.rows));
    }
    if (!request.order) return request.rows;
    return std::make_shared<const RenameItems>(SortRows(*request.rows, *request.order, isCancelled));
}

}  // namespace

const FolderNames& FolderCache::Read(const std::wstring& folder) {
    const auto known = m_folders.find(folder);
    return known != m_folders.end() ? known->second : m_folders.emplace(folder, m_list(folder)).first->second;
}

void MakePreview(const PreviewRequest& request, FolderCache& folders, IPropertySource* properties,
                 const Cancelled& isCancelled, const std::function<void(std::shared_ptr<const Preview>)>& publish) {
    if (request.readsFolders || request.session) folders.Forget();
    const RowSnapshot rows = RowsOf(request, folders, isCancelled);
    if (isCancelled()) return;
    RenameRule rule(properties);
    rule.SetRule(request.rule, request.time);
    if (!rule.UsesCounter() && request.visibleCount > 0 && request.firstVisible < rows->size()) {
        const std::shared_ptr<Preview> visible = BeginPreview(request, rows);
        visible->first = request.firstVisible;
        const size_t last = std::min(rows->size(), request.firstVisible + request.visibleCount);
        if (!ComputeRows(rule, *rows, request.firstVisible, last, isCancelled, *visible)) return;
        publish(visible);
    }
    const std::shared_ptr<Preview> preview = BeginPreview(request, rows);
    if (!ComputeRows(rule, *rows, 0, rows->size(), isCancelled, *preview)) return;
    std::vector<FolderNames> listings;
    for (const std::wstring& folder : FoldersOf(*rows)) {
        if (isCancelled()) return;
        listings.push_back(folders.Read(folder));
    }
    preview->plans = PlanRenames(preview->computed, listings).rows;
    if (!isCancelled()) publish(preview);
}

}  // namespace BatchRename
