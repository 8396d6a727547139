// exports_test.cpp - the library as a host sees it: loaded from its file, reached through its three exports.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "sdk/extension_info.h"
#include "sdk/plugin_interface.h"
#include "win32/module.h"

using namespace Quorvane::SDK;

namespace {

class Exports : public testing::Test {
protected:
    // The tests run under a drive letter that stands for the whole file system of the build machine.
    const Win32::Module m_library{LoadLibraryA("Z:" QV_LIBRARY)};
    const GetExtensionInfoFunction GetExtensionInfo =
        Win32::FindFunction<GetExtensionInfoFunction>(m_library, "GetExtensionInfo");
    const CreateFunction Create = Win32::FindFunction<CreateFunction>(m_library, "Create");
    const DeleteFunction Delete = Win32::FindFunction<DeleteFunction>(m_library, "Delete");

    void SetUp() override { ASSERT_TRUE(GetExtensionInfo && Create && Delete); }
};

/// A record whose every byte is 0xCC.
ExtensionInfo MarkedRecord() {
    ExtensionInfo record;
    std::memset(&record, 0xCC, sizeof(record));
    return record;
}
bool IsMarked(const void* begin, size_t size) {
    return std::string(static_cast<const char*>(begin), size) == std::string(size, '\xCC');
}

}  // namespace

TEST_F(Exports, DescribeTheThreeExtensions) {
    const struct {
        uint32_t index;
        const wchar_t* name;
        const wchar_t* shortName;
        const char* version;
        const char* id;
        const wchar_t* description;
        uint32_t typeFlags;
        uint32_t orderHint;
    } cases[] = {
        {0, L"File Utils", L"QVUtils", "1.3.0.0", "7c1d4e0a9b2f4c6d8e3a5b1f0c9d2e47",
         L"File Utilities like XML conversion, Base64 conversion, File security tools, Link Tools, Quick rename "
         L"commands, ...",
         8448, 700},
        {1, L"NTFS Properties", L"NTFSProp", "1.0.0.0", "9A4C1E7F2B3D4E5F8A6B7C0D1E2F3A4B",
         L"Show NTFS/File Security Properties", 2107392, 300},
        {2, L"Batch Rename", L"QVBatchRename", "1.0.0.0", "e90a3c7b5d1f4e28a6b4c2d0f8e1a375",
         L"BatchRename can rename multiple files using rules and filters", 8448, 710},
    };
    for (const auto& c : cases) {
        ExtensionInfo record = MarkedRecord();
        ASSERT_TRUE(GetExtensionInfo(c.index, &record));
        EXPECT_STREQ(record.Name, c.name);
        EXPECT_STREQ(record.ShortName, c.shortName);
        EXPECT_STREQ(record.Version, c.version);
        EXPECT_STREQ(record.ExtensionId, c.id);
        EXPECT_EQ(record.ExtensionId[33], 0);
        EXPECT_STREQ(record.Description, c.description);
        EXPECT_EQ(record.Description[159], 0);
        EXPECT_TRUE(IsMarked(record.Description + 160, 180));
        EXPECT_EQ(record.TypeFlags, c.typeFlags);
        EXPECT_EQ(record.SdkVersion, 1560000u);
        EXPECT_EQ(record.OrderHint, c.orderHint);
        EXPECT_TRUE(IsMarked(record.Reserved1, sizeof(record.Reserved1)));
        EXPECT_TRUE(IsMarked(record.Reserved2, sizeof(record.Reserved2)));
        const bool writesProperties = c.index == 1;
        EXPECT_EQ(IsMarked(record.PropertyText1, sizeof(record.PropertyText1)), !writesProperties);
        EXPECT_EQ(record.PropertyValue == 0, writesProperties);
    }
}

TEST_F(Exports, RefuseUnknownIndexesAndNullPointers) {
    ExtensionInfo record = MarkedRecord();
    for (const uint32_t index : {3u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(GetExtensionInfo(index, &record));
        EXPECT_EQ(Create(index), nullptr);
    }
    EXPECT_TRUE(IsMarked(&record, sizeof(record)));
    EXPECT_FALSE(GetExtensionInfo(0, nullptr));
    EXPECT_FALSE(Delete(nullptr, 0));
}

TEST_F(Exports, CreateObjectsThatKnowWhoTheyAre) {
    for (uint32_t index = 0; index < 3; ++index) {
        ExtensionInfo record = {};
        ASSERT_TRUE(GetExtensionInfo(index, &record));
        IPluginInterface* const object = Create(index);
        ASSERT_NE(object, nullptr);
        EXPECT_STREQ(object->GetId(), record.ExtensionId);
        EXPECT_EQ(object->Init(nullptr), 0u);
        EXPECT_TRUE(Delete(object, index));
    }
}

TEST_F(Exports, DeleteLeavesObjectsOfAnotherClassAlone) {
    IPluginInterface* const properties = Create(1);
    EXPECT_TRUE(Delete(properties, 0));
    EXPECT_TRUE(Delete(properties, 2));
    EXPECT_FALSE(Delete(properties, 7));
    EXPECT_STREQ(properties->GetId(), "9A4C1E7F2B3D4E5F8A6B7C0D1E2F3A4B");  // still alive
    EXPECT_TRUE(Delete(properties, 1));
}

TEST_F(Exports, CommandsBeforeAHostIsKnownAreNotHandled) {
    for (const uint32_t index : {0u, 2u}) {
        IPluginInterface* const object = Create(index);
        EXPECT_EQ(object->GetType(), 0x2000u);
        EXPECT_EQ(object->OnCommand(30151, 0, 0), 0u);
        EXPECT_EQ(object->OnCommand(20500, 0, 0), 0u);
        EXPECT_EQ(object->OnCustomCommand(nullptr), 0u);
        EXPECT_EQ(object->OnElevatedRequest(5000, nullptr), 0u);
        EXPECT_EQ(object->OnCommand(20002, 0, 0), 0u);
        EXPECT_EQ(object->Shutdown(), 0u);
        EXPECT_TRUE(Delete(object, index));
    }
}
