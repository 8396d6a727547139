// host_state.h - what the host has, apart from the library: streams, texts, settings, menus, files. One for each run,
// shared by the services objects of all extensions.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/answers.h"
#include "host/choice_list.h"
#include "host/column_values.h"
#include "host/command_queue.h"
#include "host/custom_commands.h"
#include "host/elevated_channel.h"
#include "host/file_objects.h"
#include "host/file_operations.h"
#include "host/language.h"
#include "host/log.h"
#include "host/main_window.h"
#include "host/menus.h"
#include "host/output.h"
#include "host/panel_view.h"
#include "host/progress.h"
#include "host/questions.h"
#include "host/settings_file.h"
#include "host/xml_service.h"

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
    std::atomic<uint32_t> failedCount = 0;                  // files marked as failed, renames refused
    // Of the command that is running. One that marks its files says by that which of them failed; all others say it in
    // the log alone.
    std::atomic<uint32_t> loggedFailures = 0;
};

}  // namespace QVHost
