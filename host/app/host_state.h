// host_state.h - what the host has, apart from the library: streams, texts, settings, menus, files. One for each run,
// shared by the services objects of all extensions.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/app/column_values.h"
#include "host/app/output.h"
#include "host/app/run_progress.h"
#include "host/contract/custom_commands.h"
#include "host/contract/file_objects.h"
#include "host/contract/file_operations.h"
#include "host/contract/language.h"
#include "host/contract/menus.h"
#include "host/contract/panel_view.h"
#include "host/contract/settings_file.h"
#include "host/elevated/elevated_channel.h"
#include "host/questions/answers.h"
#include "host/questions/questions.h"
#include "host/xml/xml_service.h"

namespace QVHost {

struct HostState {
    Output& output;
    Log log;
    LanguageTexts texts;
    SettingsFile settings;
    Questions questions;
    ProgressWatch progressWatch;
    ElevatedLaunch elevatedLaunch;
    std::wstring configurationFolder;  // ends in a separator
    UniqueWindow mainWindow = {};      // empty where nobody is there to look at windows
    bool isElevated = false;
    bool canElevate = false;
    bool usesColumnD = false;
    bool usesColumnE = false;

    MenuModel menus = {};
    CustomCommandTable customCommands = {};
    CommandQueue commandQueue = {};                            // what extensions ask for from their own threads
    std::map<uint32_t, PropertyColumns> propertyColumns = {};  // by extension
    ColumnValues columns = {};
    FileObjects files = {};  // above everything that holds items
    Shelf<ChoiceList> choiceLists = {};
    Shelf<Progress> progressDisplays = {};
    Shelf<XmlService> xmlServices = {};
    std::vector<std::shared_ptr<FileItem>> selection = {};  // as the command line names it
    IPanelView* panel = nullptr;                            // where there is one, the selection is its own
    bool reportsCalls = false;                              // each call is an item of the report, the marks are none
    std::atomic<uint32_t> failedCount = 0;                  // files marked as failed, renames refused
    // Of the command that is running. One that marks its files says by that which of them failed; all others say it in
    // the log alone.
    std::atomic<uint32_t> loggedFailures = 0;
};

}  // namespace QVHost
