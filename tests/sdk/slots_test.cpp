// slots_test.cpp - the binary contract: each operation's place in its compiled table, read back and compared.
#include <cstring>

#include <gtest/gtest.h>

#include "sdk/host_services.h"

namespace {

using namespace Quorvane::SDK;

/// The slot of a virtual operation. A pointer to one holds its byte offset in the table, plus one.
template <class Operation>
size_t SlotOf(Operation operation) {
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &operation, sizeof(offset));
    return static_cast<size_t>(offset - 1) / sizeof(void*);
}

/// An operation and the slot that it must have.
struct Place {
    template <class Operation>
    Place(size_t wanted, Operation operation) : slot(wanted), compiled(SlotOf(operation)) {}

    size_t slot;
    size_t compiled;
};

template <class... Places>
void Expect(const char* name, Places... places) {
    for (const Place& place : {places...}) EXPECT_EQ(place.compiled, place.slot) << name;
}

TEST(Slots, OfTheExtensions) {
    Expect("IPluginInterface", Place(0, &IPluginInterface::Init), Place(1, &IPluginInterface::GetType),
           Place(2, &IPluginInterface::SetHost), Place(3, &IPluginInterface::GetId),
           Place(4, &IPluginInterface::PreTranslateMessage), Place(5, &IPluginInterface::OnCommand),
           Place(7, &IPluginInterface::OnCustomCommand), Place(8, &IPluginInterface::OnElevatedRequest),
           Place(11, &IPluginInterface::Shutdown), Place(14, &IPluginInterface::Reserved14));
    Expect("IFileProperties", Place(0, &IFileProperties::Init), Place(1, &IFileProperties::GetType),
           Place(2, &IFileProperties::SetHost), Place(3, &IFileProperties::GetId), Place(4, &IFileProperties::GetValue),
           Place(5, &IFileProperties::ClearCache));
}

TEST(Slots, OfTheHostServices) {
    Expect("IHostServices", Place(2, &IHostServices::Release), Place(4, &IHostServices::GetMainWindow),
           Place(7, &IHostServices::GetTextModule), Place(15, &IHostServices::GetText),
           Place(16, &IHostServices::GetModuleText), Place(32, &IHostServices::RunHostCommand),
           Place(34, &IHostServices::GetCommandFactory), Place(35, &IHostServices::GetMenuBuilder),
           Place(36, &IHostServices::GetCustomCommandRegistry), Place(42, &IHostServices::GetXmlService),
           Place(44, &IHostServices::GetSettings), Place(45, &IHostServices::GetConfigurationFolder),
           Place(63, &IHostServices::AcquireService), Place(65, &IHostServices::ReleaseService),
           Place(111, &IHostServices::IsElevated), Place(112, &IHostServices::CanElevate),
           Place(113, &IHostServices::UseColumnD), Place(114, &IHostServices::UseColumnE),
           Place(129, &IHostServices::CreateFileList), Place(130, &IHostServices::OpenProgress),
           Place(133, &IHostServices::CreateChoiceList), Place(137, &IHostServices::Log),
           Place(146, &IHostServices::MessageBox), Place(147, &IHostServices::ShowInputDialog),
           Place(148, &IHostServices::ShowChoiceDialog));
}

TEST(Slots, OfMenusAndCommands) {
    Expect("IMenuBuilder", Place(0, &IMenuBuilder::FindOrAddSubMenu), Place(1, &IMenuBuilder::AddSubMenu),
           Place(2, &IMenuBuilder::CreateRootMenu), Place(4, &IMenuBuilder::AddCategoryMenu),
           Place(7, &IMenuBuilder::AddNamedSubMenu), Place(12, &IMenuBuilder::AddCommand));
    Expect("ICommandFactory", Place(1, &ICommandFactory::CreateCommand));
    Expect("ICustomCommandRegistry", Place(1, &ICustomCommandRegistry::AddCustomCommand),
           Place(2, &ICustomCommandRegistry::Commit), Place(3, &ICustomCommandRegistry::IsRegistered));
    Expect("ICustomCommand", Place(0, &ICustomCommand::AddParameter), Place(1, &ICustomCommand::SetDescription));
    Expect("ICustomCommandCall", Place(0, &ICustomCommandCall::HasParameter),
           Place(1, &ICustomCommandCall::GetTextParameter), Place(2, &ICustomCommandCall::GetNumberParameter),
           Place(3, &ICustomCommandCall::GetCommandId), Place(4, &ICustomCommandCall::GetSwitchParameter),
           Place(5, &ICustomCommandCall::SetResultCode), Place(6, &ICustomCommandCall::SetResultText));
}

TEST(Slots, OfFilesAndServices) {
    Expect("IFileItem", Place(0, &IFileItem::GetName), Place(2, &IFileItem::GetLocation), Place(3, &IFileItem::GetPath),
           Place(9, &IFileItem::GetAttributes), Place(10, &IFileItem::GetStoredProperty),
           Place(11, &IFileItem::IsRemote), Place(12, &IFileItem::Release), Place(35, &IFileItem::QueryProperty),
           Place(36, &IFileItem::RefreshProperty));
    Expect("IFileList", Place(1, &IFileList::AddItem), Place(3, &IFileList::GetCount), Place(4, &IFileList::GetItem),
           Place(12, &IFileList::Release));
    Expect("IFileOperations", Place(14, &IFileOperations::Exists), Place(17, &IFileOperations::CreateFileItem),
           Place(18, &IFileOperations::SetFileList), Place(64, &IFileOperations::CreateRenameBatch),
           Place(65, &IFileOperations::EndRenameBatch), Place(66, &IFileOperations::CommitRenameBatch),
           Place(67, &IFileOperations::RenameRows), Place(68, &IFileOperations::GetPropertyText),
           Place(69, &IFileOperations::GetPropertyName));
    Expect("IRenameResultCallback", Place(0, &IRenameResultCallback::OnRenameStarting),
           Place(1, &IRenameResultCallback::OnRenameResult));
    Expect("IRenameBatch", Place(1, &IRenameBatch::AddRename));
    Expect("IFolderRefresh", Place(0, &IFolderRefresh::RefreshFolder));
    Expect("IElevatedChannel", Place(0, &IElevatedChannel::Connect), Place(9, &IElevatedChannel::CreateWriter),
           Place(10, &IElevatedChannel::Send), Place(11, &IElevatedChannel::Close));
    Expect("IRequestWriter", Place(1, &IRequestWriter::WriteNumber), Place(3, &IRequestWriter::WriteString),
           Place(5, &IRequestWriter::GetData), Place(6, &IRequestWriter::GetSize), Place(7, &IRequestWriter::Release));
    Expect("IRequestReader", Place(0, &IRequestReader::Attach), Place(2, &IRequestReader::ReadString),
           Place(3, &IRequestReader::ReadNumber), Place(5, &IRequestReader::Release));
    Expect("IRequestMessage", Place(1, &IRequestMessage::GetData), Place(2, &IRequestMessage::GetSize),
           Place(3, &IRequestMessage::Reply), Place(6, &IRequestMessage::CreateReader));
}

TEST(Slots, OfTheSmallerHostObjects) {
    Expect("ISettings", Place(1, &ISettings::GetString), Place(2, &ISettings::GetNumber),
           Place(5, &ISettings::SetString), Place(6, &ISettings::SetNumber));
    Expect("IProgress", Place(0, &IProgress::Advance), Place(1, &IProgress::IsCancelled), Place(2, &IProgress::Close));
    Expect("IChoiceList", Place(0, &IChoiceList::AddChoice), Place(1, &IChoiceList::GetCount),
           Place(2, &IChoiceList::GetChoice), Place(14, &IChoiceList::Release));
    Expect("IXmlService", Place(1, &IXmlService::CreateDocument), Place(2, &IXmlService::Load),
           Place(3, &IXmlService::Save), Place(4, &IXmlService::ReadText), Place(29, &IXmlService::Release));
    Expect("IXmlElement", Place(7, &IXmlElement::SetAttribute));
    Expect("IXmlDocument", Place(0, &IXmlDocument::GetRoot), Place(1, &IXmlDocument::CreateRoot),
           Place(2, &IXmlDocument::Release));
}

}  // namespace
