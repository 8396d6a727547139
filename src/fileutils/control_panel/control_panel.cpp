#include "fileutils/control_panel/control_panel.h"

#include <algorithm>
#include <string>

#include "fileutils/ids.h"
#include "sdk/owners.h"

#include <shellapi.h>

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

// The menu's place is a submenu that goes by a text of another extension.
constexpr char kMenuOwner[] = "b52e9f10c4a84d7e9b6c1a3d5f2e8c90";

// clang-format off
constexpr ControlPanelCategory kCategories[] = {
    // display name                        number  text
    {L"System and Security",                  2, 2601_m},
    {L"Network and Internet",                 3, 2602_m},
    {L"Hardware and sound",                   4, 2603_m},
    {L"Programs",                             5, 2604_m},
    {L"Accounts and Family safety",           6, 2605_m},
    {L"Appearance and Personalization",       7, 2606_m},
    {L"Clock, Language and Region",           8, 2607_m},
    {L"Ease of Access",                       9, 2608_m},
    {L"Other",                                1, 2609_m},
};

constexpr ControlPanelItem kItems[] = {
    // display name                          canonical name                       A  B  C  D  E  F  index  category  text
    {L"Action Center",                         L"ActionCenter",                      1, 0, 1, 1, 1, 0,    1,      2,      2611_m},
    {L"Administrative Tools",                  L"AdministrativeTools",               1, 0, 0, 1, 1, 0,    2,      2,      2612_m},
    {L"Backup And Restore",                    L"BackupAndRestore",                  1, 0, 1, 1, 1, 0,    4,      2,      2613_m},
    {L"BitLocker Drive Encryption",            L"BitLockerDriveEncryption",          1, 0, 0, 1, 1, 0,    6,      2,      2614_m},
    {L"File History",                          L"FileHistory",                       1, 0, 0, 0, 1, 0,   61,      2,      2615_m},
    {L"Indexing Options",                      L"IndexingOptions",                   1, 0, 0, 1, 1, 0,   23,      2,      2616_m},
    {L"Notification Area Icons",               L"NotificationAreaIcons",             1, 0, 1, 1, 1, 0,   31,      2,      2617_m},
    {L"Offline Files",                         L"OfflineFiles",                      1, 0, 0, 1, 1, 0,   32,      2,      2618_m},
    {L"Performance Information and Tools",     L"PerformanceInformationAndTools",    1, 0, 0, 1, 1, 0,   36,      2,      2619_m},
    {L"Recovery",                              L"Recovery",                          1, 0, 1, 1, 1, 0,   41,      2,      2620_m},
    {L"System",                                L"System",                            1, 0, 0, 1, 1, 0,   48,      2,      2621_m},
    {L"Windows CardSpace",                     L"CardSpace",                         1, 0, 0, 1, 1, 0,   54,      2,      2622_m},
    {L"Windows Defender",                      L"WindowsDefender",                   1, 0, 0, 1, 1, 0,   55,      2,      2623_m},
    {L"Windows Firewall",                      L"WindowsFirewall",                   1, 0, 0, 1, 1, 0,   56,      2,      2624_m},
    {L"Windows Mobility Center",               L"MobilityCenter",                    1, 0, 0, 1, 1, 0,   57,      2,      2625_m},
    {L"Windows Update",                        L"WindowsUpdate",                     1, 0, 0, 1, 1, 0,   59,      2,      2626_m},
    {L"HomeGroup",                             L"HomeGroup",                         1, 0, 1, 1, 1, 0,   22,      3,      2627_m},
    {L"Internet Options",                      L"InternetOptions",                   1, 0, 0, 1, 1, 0,   25,      3,      2628_m},
    {L"Network and Sharing Center",            L"NetworkAndSharingCenter",           1, 0, 0, 1, 1, 0,   30,      3,      2629_m},
    {L"RemoteApp and Desktop Connections",     L"RemoteAppAndDesktopConnections",    1, 0, 1, 1, 1, 0,   43,      3,      2630_m},
    {L"AutoPlay",                              L"AutoPlay",                          1, 0, 0, 1, 1, 0,    3,      4,      2631_m},
    {L"Device Manager",                        L"DeviceManager",                     1, 0, 0, 1, 1, 0,   13,      4,      2632_m},
    {L"Devices and Printers",                  L"DevicesAndPrinters",                1, 0, 0, 1, 1, 0,   14,      4,      2633_m},
    {L"Game Controllers",                      L"GameControllers",                   1, 0, 0, 1, 1, 0,   19,      4,      2634_m},
    {L"Infrared",                              L"Infrared",                          1, 0, 1, 1, 1, 0,   24,      4,      2635_m},
    {L"iSCSI Initiator",                       L"iSCSIInitiator",                    1, 0, 0, 1, 1, 0,   26,      4,      2636_m},
    {L"Keyboard",                              L"Keyboard",                          1, 0, 0, 1, 1, 0,   27,      4,      2637_m},
    {L"Location and Other Sensors",            L"LocationAndOtherSensors",           1, 0, 1, 1, 1, 0,   28,      4,      2638_m},
    {L"Location Settings",                     L"LocationSettings",                  1, 0, 0, 0, 1, 0,   60,      4,      2639_m},
    {L"Mouse",                                 L"Mouse",                             1, 0, 0, 1, 1, 0,   29,      4,      2640_m},
    {L"Pen and Touch",                         L"PenAndTouch",                       1, 0, 0, 1, 1, 0,   34,      4,      2641_m},
    {L"Phone and Modem",                       L"PhoneAndModem",                     1, 0, 1, 1, 1, 0,   38,      4,      2642_m},
    {L"Power Options",                         L"PowerOptions",                      1, 0, 0, 1, 1, 0,   39,      4,      2643_m},
    {L"Scanners and Cameras",                  L"ScannersAndCameras",                1, 0, 1, 1, 1, 0,   44,      4,      2644_m},
    {L"Sound",                                 L"Sound",                             1, 0, 1, 1, 1, 0,   45,      4,      2645_m},
    {L"Tablet PC Settings",                    L"TabletPCSettings",                  1, 0, 0, 1, 1, 0,   49,      4,      2646_m},
    {L"Windows SideShow",                      L"WindowsSideShow",                   1, 0, 0, 0, 1, 0,   58,      4,      2647_m},
    {L"Default Programs",                      L"DefaultPrograms",                   1, 0, 0, 1, 1, 0,   11,      5,      2649_m},
    {L"Get Programs",                          L"GetPrograms",                       1, 0, 0, 1, 1, 0,   20,      5,      2650_m},
    {L"Programs and Features",                 L"ProgramsAndFeatures",               1, 0, 0, 1, 1, 0,   40,      5,      2651_m},
    {L"Credential Manager",                    L"CredentialManager",                 1, 0, 1, 1, 1, 0,    8,      6,      2652_m},
    {L"Parental Controls",                     L"ParentalControls",                  1, 0, 1, 1, 1, 0,   33,      6,      2653_m},
    {L"People Near Me",                        L"PeopleNearMe",                      1, 0, 1, 1, 1, 0,   35,      6,      2654_m},
    {L"User Accounts",                         L"UserAccounts",                      1, 0, 0, 1, 1, 0,   53,      6,      2655_m},
    {L"Color Management",                      L"ColorManagement",                   1, 0, 0, 1, 1, 0,    7,      7,      2656_m},
    {L"Display",                               L"Display",                           1, 0, 1, 1, 1, 0,   15,      7,      2657_m},
    {L"Folder Options",                        L"FolderOptions",                     1, 0, 0, 1, 1, 0,   17,      7,      2658_m},
    {L"Fonts",                                 L"Fonts",                             1, 0, 0, 1, 1, 0,   18,      7,      2659_m},
    {L"Personalization",                       L"Personalization",                   1, 0, 0, 1, 1, 0,   37,      7,      2660_m},
    {L"Date and Time",                         L"DateAndTime",                       1, 0, 0, 1, 1, 0,    9,      8,      2661_m},
    {L"Language",                              L"Language",                          1, 0, 0, 0, 1, 0,   62,      8,      2662_m},
    {L"Region and Language",                   L"RegionAndLanguage",                 1, 0, 1, 1, 1, 0,   42,      8,      2663_m},
    {L"Ease of Access Center",                 L"EaseOfAccessCenter",                1, 0, 0, 1, 1, 0,   16,      9,      2664_m},
    {L"Speech Recognition",                    L"SpeechRecognition",                 1, 0, 1, 1, 1, 0,   46,      9,      2665_m},
    {L"Text to Speech",                        L"TextToSpeech",                      1, 0, 0, 1, 1, 0,   51,      9,      2666_m},
    {L"Biometric Devices",                     L"BiometricDevices",                  1, 0, 1, 1, 1, 0,    5,      1,      2667_m},
    {L"Default Locations",                     L"DefaultLocation",                   1, 0, 1, 1, 1, 0,   10,      1,      2648_m},
    {L"Desktop Gadgets",                       L"DesktopGadgets",                    1, 0, 1, 1, 1, 0,   12,      1,      2668_m},
    {L"Getting Started",                       L"GettingStarted",                    1, 0, 1, 1, 1, 0,   21,      1,      2669_m},
    {L"Sync Center",                           L"SyncCenter",                        1, 0, 0, 1, 1, 0,   47,      1,      2670_m},
    {L"Taskbar and Start Menu",                L"TaskbarAndStartMenu",               1, 0, 0, 1, 1, 0,   50,      1,      2671_m},
    {L"Troubleshooting",                       L"Troubleshooting",                   1, 0, 1, 1, 1, 0,   52,      1,      2672_m},
};
// clang-format on

constexpr bool IndexesAreUnique() {
    uint64_t seen = 0;
    for (const ControlPanelItem& item : kItems) {
        if (item.index < 1 || item.index > std::size(kItems) || (seen >> item.index & 1) != 0) return false;
        seen |= uint64_t{1} << item.index;
    }
    return true;
}
static_assert(IndexesAreUnique());

/// Which items the host wants in the menu.
bool IsWanted(const ControlPanelItem& item, bool useColumnD, bool useColumnE) {
    return !(useColumnE && !item.isInMenuE) && !(useColumnD && !item.isInMenuD);
}

/// The host's call returns nothing that matters: a system without the item shows its own message.
void LaunchThroughShell(const wchar_t* program, const wchar_t* arguments) {
    ShellExecuteW(nullptr, L"Open", program, arguments, nullptr, SW_SHOW);
}

}  // namespace

std::span<const ControlPanelCategory> ControlPanelCategories() {
    return kCategories;
}
std::span<const ControlPanelItem> ControlPanelItems() {
    return kItems;
}

void BuildControlPanelMenu(IHostServices& host, IMenuBuilder& builder, Menu* root) {
    ICommandFactory* const factory = host.GetCommandFactory();
    if (!factory || !host.CanElevate()) return;
    const wchar_t* const place = host.GetModuleText(host.GetTextModule(kMenuOwner), 200_m);
    Menu* const tools = builder.FindOrAddSubMenu(root, place, 0);
    Menu* const panel = tools ? builder.AddNamedSubMenu(tools, 2600_m, 1) : nullptr;
    if (!panel) return;
    const bool useColumnD = host.UseColumnD();
    const bool useColumnE = host.UseColumnE();
    for (const ControlPanelCategory& category : kCategories) {
        Menu* const menu = builder.AddCategoryMenu(panel, category.text, 1);
        if (!menu) continue;
        for (const ControlPanelItem& item : kItems) {
            if (item.category != category.number || !IsWanted(item, useColumnD, useColumnE)) continue;
            Command* const command = factory->CreateCommand(CommandId::FirstControlPanel + item.index, kCommandFlags,
                                                            item.text, kNoText, kNoShortcut, 0);
            if (command) builder.AddCommand(menu, command, 1, 0);
        }
    }
}

void OpenControlPanelItem(uint32_t index, LaunchProgram launch) {
    const auto item = std::ranges::find_if(
        kItems, [&](const ControlPanelItem& candidate) { return candidate.index == index && !candidate.isClosed; });
    if (item == std::end(kItems)) return;
    const std::wstring name = (item->hasPrefix ? L"Microsoft." : L"") + std::wstring(item->canonicalName);
    (launch ? launch : LaunchThroughShell)(L"Control.exe", (L"/name " + name).c_str());
}

uint32_t RunControlPanelCommand(IHostServices&, uint32_t id) {
    OpenControlPanelItem(id - CommandId::FirstControlPanel);
    return 1;
}

}  // namespace FileUtils
