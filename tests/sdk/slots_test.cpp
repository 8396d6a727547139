// slots_test.cpp - the binary contract: each operation's place in its compiled table, read back and compared.
#include <cstring>

#include <gtest/gtest.h>

#include "sdk/host_services.h"

using namespace Quorvane::SDK;

namespace {

/// The slot of a virtual operation. A pointer to one holds its byte offset in the table, plus one.
template <class Operation>
size_t SlotOf(Operation operation) {
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &operation, sizeof(offset));
    return static_cast<size_t>(offset - 1) / sizeof(void*);
}

}  // namespace

#define EXPECT_SLOT(Interface, Operation, slot) EXPECT_EQ(SlotOf(&Interface::Operation), size_t(slot)) << #Operation

TEST(Slots, OfTheExtensions) {
    EXPECT_SLOT(IPluginInterface, Init, 0);
    EXPECT_SLOT(IPluginInterface, GetType, 1);
    EXPECT_SLOT(IPluginInterface, SetHost, 2);
    EXPECT_SLOT(IPluginInterface, GetId, 3);
    EXPECT_SLOT(IPluginInterface, PreTranslateMessage, 4);
    EXPECT_SLOT(IPluginInterface, OnCommand, 5);
    EXPECT_SLOT(IPluginInterface, OnCustomCommand, 7);
    EXPECT_SLOT(IPluginInterface, OnElevatedRequest, 8);
    EXPECT_SLOT(IPluginInterface, Shutdown, 11);
    EXPECT_SLOT(IPluginInterface, Reserved14, 14);
    EXPECT_SLOT(IFileProperties, Init, 0);
    EXPECT_SLOT(IFileProperties, GetType, 1);
    EXPECT_SLOT(IFileProperties, SetHost, 2);
    EXPECT_SLOT(IFileProperties, GetId, 3);
    EXPECT_SLOT(IFileProperties, GetValue, 4);
    EXPECT_SLOT(IFileProperties, ClearCache, 5);
}

TEST(Slots, OfTheHostServices) {
    EXPECT_SLOT(IHostServices, Release, 2);
    EXPECT_SLOT(IHostServices, GetMainWindow, 4);
    EXPECT_SLOT(IHostServices, GetTextModule, 7);
    EXPECT_SLOT(IHostServices, GetText, 15);
    EXPECT_SLOT(IHostServices, GetModuleText, 16);
    EXPECT_SLOT(IHostServices, RunHostCommand, 32);
    EXPECT_SLOT(IHostServices, GetCommandFactory, 34);
    EXPECT_SLOT(IHostServices, GetMenuBuilder, 35);
    EXPECT_SLOT(IHostServices, GetCustomCommandRegistry, 36);
    EXPECT_SLOT(IHostServices, GetXmlService, 42);
    EXPECT_SLOT(IHostServices, GetSettings, 44);
    EXPECT_SLOT(IHostServices, GetConfigurationFolder, 45);
    EXPECT_SLOT(IHostServices, AcquireService, 63);
    EXPECT_SLOT(IHostServices, ReleaseService, 65);
    EXPECT_SLOT(IHostServices, IsElevated, 111);
    EXPECT_SLOT(IHostServices, CanElevate, 112);
    EXPECT_SLOT(IHostServices, UseColumnD, 113);
    EXPECT_SLOT(IHostServices, UseColumnE, 114);
    EXPECT_SLOT(IHostServices, CreateFileList, 129);
    EXPECT_SLOT(IHostServices, OpenProgress, 130);
    EXPECT_SLOT(IHostServices, CreateChoiceList, 133);
    EXPECT_SLOT(IHostServices, Log, 137);
    EXPECT_SLOT(IHostServices, MessageBox, 146);
    EXPECT_SLOT(IHostServices, ShowInputDialog, 147);
    EXPECT_SLOT(IHostServices, ShowChoiceDialog, 148);
}

TEST(Slots, OfMenusAndCommands) {
    EXPECT_SLOT(IMenuBuilder, FindOrAddSubMenu, 0);
    EXPECT_SLOT(IMenuBuilder, AddSubMenu, 1);
    EXPECT_SLOT(IMenuBuilder, CreateRootMenu, 2);
    EXPECT_SLOT(IMenuBuilder, AddCategoryMenu, 4);
    EXPECT_SLOT(IMenuBuilder, AddNamedSubMenu, 7);
    EXPECT_SLOT(IMenuBuilder, AddCommand, 12);
    EXPECT_SLOT(ICommandFactory, CreateCommand, 1);
    EXPECT_SLOT(ICustomCommandRegistry, AddCustomCommand, 1);
    EXPECT_SLOT(ICustomCommandRegistry, Commit, 2);
    EXPECT_SLOT(ICustomCommandRegistry, IsRegistered, 3);
    EXPECT_SLOT(ICustomCommand, AddParameter, 0);
    EXPECT_SLOT(ICustomCommand, SetDescription, 1);
    EXPECT_SLOT(ICustomCommandCall, HasParameter, 0);
    EXPECT_SLOT(ICustomCommandCall, GetTextParameter, 1);
    EXPECT_SLOT(ICustomCommandCall, GetNumberParameter, 2);
    EXPECT_SLOT(ICustomCommandCall, GetCommandId, 3);
    EXPECT_SLOT(ICustomCommandCall, GetSwitchParameter, 4);
    EXPECT_SLOT(ICustomCommandCall, SetResultCode, 5);
    EXPECT_SLOT(ICustomCommandCall, SetResultText, 6);
}

TEST(Slots, OfFilesAndServices) {
    EXPECT_SLOT(IFileItem, GetName, 0);
    EXPECT_SLOT(IFileItem, GetLocation, 2);
    EXPECT_SLOT(IFileItem, GetPath, 3);
    EXPECT_SLOT(IFileItem, GetAttributes, 9);
    EXPECT_SLOT(IFileItem, GetStoredProperty, 10);
    EXPECT_SLOT(IFileItem, IsRemote, 11);
    EXPECT_SLOT(IFileItem, Release, 12);
    EXPECT_SLOT(IFileItem, QueryProperty, 35);
    EXPECT_SLOT(IFileItem, RefreshProperty, 36);
    EXPECT_SLOT(IFileList, AddItem, 1);
    EXPECT_SLOT(IFileList, GetCount, 3);
    EXPECT_SLOT(IFileList, GetItem, 4);
    EXPECT_SLOT(IFileList, Release, 12);
    EXPECT_SLOT(IFileOperations, Exists, 14);
    EXPECT_SLOT(IFileOperations, CreateFileItem, 17);
    EXPECT_SLOT(IFileOperations, SetFileList, 18);
    EXPECT_SLOT(IFileOperations, CreateRenameBatch, 64);
    EXPECT_SLOT(IFileOperations, EndRenameBatch, 65);
    EXPECT_SLOT(IFileOperations, CommitRenameBatch, 66);
    EXPECT_SLOT(IFileOperations, RenameRows, 67);
    EXPECT_SLOT(IFileOperations, GetPropertyText, 68);
    EXPECT_SLOT(IFileOperations, GetPropertyName, 69);
    EXPECT_SLOT(IRenameResultCallback, OnRenameStarting, 0);
    EXPECT_SLOT(IRenameResultCallback, OnRenameResult, 1);
    EXPECT_SLOT(IRenameBatch, AddRename, 1);
    EXPECT_SLOT(IFolderRefresh, RefreshFolder, 0);
    EXPECT_SLOT(IElevatedChannel, Connect, 0);
    EXPECT_SLOT(IElevatedChannel, CreateWriter, 9);
    EXPECT_SLOT(IElevatedChannel, Send, 10);
    EXPECT_SLOT(IElevatedChannel, Close, 11);
    EXPECT_SLOT(IRequestWriter, WriteNumber, 1);
    EXPECT_SLOT(IRequestWriter, WriteString, 3);
    EXPECT_SLOT(IRequestWriter, GetData, 5);
    EXPECT_SLOT(IRequestWriter, GetSize, 6);
    EXPECT_SLOT(IRequestWriter, Release, 7);
    EXPECT_SLOT(IRequestReader, Attach, 0);
    EXPECT_SLOT(IRequestReader, ReadString, 2);
    EXPECT_SLOT(IRequestReader, ReadNumber, 3);
    EXPECT_SLOT(IRequestReader, Release, 5);
    EXPECT_SLOT(IRequestMessage, GetData, 1);
    EXPECT_SLOT(IRequestMessage, GetSize, 2);
    EXPECT_SLOT(IRequestMessage, Reply, 3);
    EXPECT_SLOT(IRequestMessage, CreateReader, 6);
}

TEST(Slots, OfTheSmallerHostObjects) {
    EXPECT_SLOT(ISettings, GetString, 1);
    EXPECT_SLOT(ISettings, GetNumber, 2);
    EXPECT_SLOT(ISettings, SetString, 5);
    EXPECT_SLOT(ISettings, SetNumber, 6);
    EXPECT_SLOT(IProgress, Advance, 0);
    EXPECT_SLOT(IProgress, IsCancelled, 1);
    EXPECT_SLOT(IProgress, Close, 2);
    EXPECT_SLOT(IChoiceList, AddChoice, 0);
    EXPECT_SLOT(IChoiceList, GetCount, 1);
    EXPECT_SLOT(IChoiceList, GetChoice, 2);
    EXPECT_SLOT(IChoiceList, Release, 14);
    EXPECT_SLOT(IXmlService, CreateDocument, 1);
    EXPECT_SLOT(IXmlService, Load, 2);
    EXPECT_SLOT(IXmlService, Save, 3);
    EXPECT_SLOT(IXmlService, ReadText, 4);
    EXPECT_SLOT(IXmlService, Release, 29);
    EXPECT_SLOT(IXmlElement, SetAttribute, 7);
    EXPECT_SLOT(IXmlDocument, GetRoot, 0);
    EXPECT_SLOT(IXmlDocument, CreateRoot, 1);
    EXPECT_SLOT(IXmlDocument, Release, 2);
}
