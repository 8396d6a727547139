// The columns as a host sees them: what is registered, stored values, values cut to their buffers. Many threads at once
// are the matter of the thread sanitizer, in fuzz/threads.

#include "host/app/subcommands.h"
#include "security/account_names.h"
#include "security/ntfs_prop.h"
#include "support/services_of_host.h"

namespace {

using Security::NTFSProp;
using namespace Quorvane::SDK;

class Columns : public testing::Test {
protected:
    Columns() {
        m_provider.SetHost(&m_host.Services());
        EXPECT_EQ(m_provider.Init(&m_host.Services()), 0u);
    }

    /// "(no value)" when there is none. The buffer has `capacity` units.
    std::wstring ValueOf(IFileItem& item, uint16_t id, uint32_t capacity = 256) {
        std::vector<wchar_t> text(capacity + 1, L'#');
        const bool hasValue = m_provider.GetValue(&item, text.data(), capacity, id) == 1;
        EXPECT_EQ(text[capacity], L'#') << "written beyond the buffer";
        return hasValue ? text.data() : L"(no value)";
    }

    QVTest::ServicesOfHost m_host{QV_HOST_PROGRAM};
    QVTest::TemporaryFolder m_folder;
    NTFSProp m_provider;
};

TEST_F(Columns, AreRegisteredAsHostsKnowThem) {
    std::vector<std::tuple<int, int, uint32_t>> columns;
    for (const auto& column : m_host.State().propertyColumns[0].columns)
        columns.emplace_back(column.id, column.valueType, column.flags);
    const decltype(columns) expected = {{1, 0, 0x30100}, {2, 0, 0x30100}, {3, 2, 0x70200}, {4, 2, 0x70200}};
    EXPECT_EQ(columns, expected);
}

TEST_F(Columns, HaveTheseValues) {
    IFileItem& file = m_host.Select(m_folder.Write(L"a.txt", "x"));
    IFileItem& none = m_host.Select(m_folder / L"none");
    EXPECT_EQ(ValueOf(file, 1), Security::CurrentAccountName());
    EXPECT_EQ(ValueOf(file, 3), L"0");
    EXPECT_EQ(ValueOf(file, 4), L"(no value)");
    EXPECT_EQ(ValueOf(file, 5), L"(no value)");
    EXPECT_EQ(ValueOf(none, 1), L"(no value)");
    EXPECT_EQ(ValueOf(none, 2), L"   ");
}

TEST_F(Columns, TakeStoredValuesAndCutThemBetweenCharacters) {
    QVHost::FileItem& item = m_host.Select(m_folder.Write(L"a.txt", "x"));
    item.StoreProperty(1, L"ab\xD83D\xDE00");
    EXPECT_EQ(ValueOf(item, 1), L"ab\xD83D\xDE00");
    EXPECT_EQ(ValueOf(item, 1, 5), L"ab\xD83D\xDE00");
    EXPECT_EQ(ValueOf(item, 1, 4), L"ab") << "half a character is none";
    EXPECT_EQ(ValueOf(item, 1, 2), L"a");
    EXPECT_EQ(ValueOf(item, 1, 1), L"");
    EXPECT_EQ(m_provider.GetValue(&item, nullptr, 0, 1), 0u);
    StoredPropertyValue value = {};
    EXPECT_EQ(item.QueryProperty(1, 1, &value), 1u);
    item.RefreshProperty(1);
    EXPECT_EQ(ValueOf(item, 1), Security::CurrentAccountName()) << "computed anew";
}

TEST_F(Columns, ArePrintedForPeopleAndForTables) {
    const std::wstring path = m_folder.Write(L"a,b.txt", "x");
    QVHost::FileItem& item = m_host.Select(path);
    item.StoreProperty(1, L"D\\\"o\"");
    item.StoreProperty(2, L"R X");
    item.StoreProperty(3, L"2");
    QVHost::ColumnValues values;
    values.AddProvider(m_host.State().propertyColumns[0], m_provider);
    for (const auto format : {QVHost::ColumnFormat::Csv, QVHost::ColumnFormat::Table})
        QVHost::PrintColumns(m_host.State().output, values, m_host.State().selection, format, [] { return false; });
    const std::string name(path.begin(), path.end());
    EXPECT_EQ(m_host.Log(), "path,owner,access,ADScount,ADSsize\n\"" + name + "\",\"D\\\"\"o\"\"\",R X,2,\n" + "File" +
                                std::string(name.size() - 4, ' ') + "  Owner  Access  Streams  Size of streams\n" +
                                name + "  D\\\"o\"  R X           2\n");
    const size_t length = m_host.Log().size();
    QVHost::PrintColumns(m_host.State().output, values, m_host.State().selection, QVHost::ColumnFormat::Csv,
                         [] { return true; });
    EXPECT_EQ(m_host.Log().substr(length), "path,owner,access,ADScount,ADSsize\n") << "stopped before the first file";
}

}  // namespace
