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
        const wchar_t* shortName;
        const char* id;
        uint32_t typeFlags, orderHint;
    } cases[] = {
        {L"QVUtils", "7c1d4e0a9b2f4c6d8e3a5b1f0c9d2e47", 8448, 700},
        {L"NTFSProp", "9A4C1E7F2B3D4E5F8A6B7C0D1E2F3A4B", 2107392, 300},
        {L"QVBatchRename", "e90a3c7b5d1f4e28a6b4c2d0f8e1a375", 8448, 710},
    };
    for (uint32_t index = 0; index < std::size(cases); ++index) {
        ExtensionInfo record = MarkedRecord();
        ASSERT_TRUE(GetExtensionInfo(index, &record));
        EXPECT_STREQ(record.ShortName, cases[index].shortName);
        EXPECT_STREQ(record.ExtensionId, cases[index].id);
        EXPECT_EQ(record.Description[159], 0);
        EXPECT_TRUE(IsMarked(record.Description + 160, 180)) << "what lies after the text is the host's";
        EXPECT_EQ(record.TypeFlags, cases[index].typeFlags);
        EXPECT_EQ(record.SdkVersion, 1560000u);
        EXPECT_EQ(record.OrderHint, cases[index].orderHint);
        EXPECT_TRUE(IsMarked(record.Reserved1, sizeof(record.Reserved1)));
        EXPECT_TRUE(IsMarked(record.Reserved2, sizeof(record.Reserved2)));
        const bool writesProperties = index == 1;
        EXPECT_EQ(IsMarked(record.PropertyText1, sizeof(record.PropertyText1)), !writesProperties);
        EXPECT_EQ(record.PropertyValue == 0, writesProperties);
        IPluginInterface* const object = Create(index);
        ASSERT_NE(object, nullptr);
        EXPECT_STREQ(object->GetId(), cases[index].id);
        EXPECT_EQ(object->Init(nullptr), 0u);
        if (!writesProperties) {  // before a host is known, no command is handled
            EXPECT_EQ(object->GetType(), 0x2000u);
            for (const uint32_t id : {30151u, 20500u, 20002u}) EXPECT_EQ(object->OnCommand(id, 0, 0), 0u);
            EXPECT_EQ(object->OnCustomCommand(nullptr), 0u);
            EXPECT_EQ(object->OnElevatedRequest(5000, nullptr), 0u);
            EXPECT_EQ(object->Shutdown(), 0u);
        }
        EXPECT_TRUE(Delete(object, index));
    }
}

TEST_F(Exports, RefuseUnknownIndexesNullPointersAndObjectsOfAnotherClass) {
    ExtensionInfo record = MarkedRecord();
    for (const uint32_t index : {3u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(GetExtensionInfo(index, &record));
        EXPECT_EQ(Create(index), nullptr);
    }
    EXPECT_TRUE(IsMarked(&record, sizeof(record)));
    EXPECT_FALSE(GetExtensionInfo(0, nullptr));
    EXPECT_FALSE(Delete(nullptr, 0));
    IPluginInterface* const properties = Create(1);
    EXPECT_TRUE(Delete(properties, 0) && Delete(properties, 2));
    EXPECT_FALSE(Delete(properties, 7));
    EXPECT_STREQ(properties->GetId(), "9A4C1E7F2B3D4E5F8A6B7C0D1E2F3A4B");  // still alive
    EXPECT_TRUE(Delete(properties, 1));
}
