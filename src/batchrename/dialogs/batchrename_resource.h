// batchrename_resource.h - the numbers of the batch renamer's dialogs and of their controls. Read by the resource
// compiler as well, so it holds nothing but comments and macros.
#pragma once

#define IDD_RULE_PANEL   104
#define IDD_ADD_TAG      105
#define IDD_UNDO_MANAGER 106
#define IDD_RENAME_ITEM  107
#define IDD_SAVE_PROFILE 108

// The children of the window itself.
#define IDC_ROWS       2000
#define IDC_STATUS_BAR 2001

// The rule panel.
#define IDC_NAME_TEMPLATE            2100
#define IDC_NAME_TAGS                2101
#define IDC_EXTENSION_TEMPLATE       2102
#define IDC_EXTENSION_TAGS           2103
#define IDC_CASE                     2104
#define IDC_COUNTER_START            2105
#define IDC_COUNTER_STEP             2106
#define IDC_COUNTER_DIGITS           2107
#define IDC_ITEMS                    2108
#define IDC_ITEM_NEW                 2109
#define IDC_ITEM_EDIT                2110
#define IDC_ITEM_REMOVE              2111
#define IDC_ITEM_UP                  2112
#define IDC_ITEM_DOWN                2113
#define IDC_REGEX                    2114
#define IDC_REPLACE_ALL_MATCHES      2115
#define IDC_CASE_SENSITIVE           2116
#define IDC_SCOPE                    2117
#define IDC_START                    2118
#define IDC_UNDO                     2119
#define IDC_PROFILES                 2120
#define IDC_RESET_LIST               2121
#define IDC_CLOSE                    2122
#define IDC_SAVE_UNDO                2123
#define IDC_LIVE_PREVIEW             2124
#define IDC_CHANGES_ONLY             2125
#define IDC_ITEM_CELL                2126  // while a pair is edited in its place
#define IDC_COUNTER_GROUP            2130
#define IDC_NAME_TEMPLATE_LABEL      2131
#define IDC_EXTENSION_TEMPLATE_LABEL 2132
#define IDC_CASE_LABEL               2133
#define IDC_COUNTER_START_LABEL      2134
#define IDC_COUNTER_STEP_LABEL       2135
#define IDC_COUNTER_DIGITS_LABEL     2136
#define IDC_ITEMS_LABEL              2137
#define IDC_SCOPE_LABEL              2138

// Add tag.
#define IDC_PROPERTY         2200
#define IDC_COMPLETE         2201  // the two kinds follow each other
#define IDC_SUB_STRING       2202
#define IDC_SUB_START        2203
#define IDC_SUB_LENGTH       2204
#define IDC_TAG_TEXT         2205
#define IDC_PROPERTY_LABEL   2210
#define IDC_SUB_START_LABEL  2211
#define IDC_SUB_LENGTH_LABEL 2212
#define IDC_TAG_TEXT_LABEL   2213

// Undo manager. "Load" is IDOK, "Close" IDCANCEL.
#define IDC_SESSIONS       2300
#define IDC_ENTRIES        2301
#define IDC_DELETE         2302
#define IDC_DELETE_ALL     2303
#define IDC_SESSIONS_LABEL 2310
#define IDC_ENTRIES_LABEL  2311
#define IDC_ENTRIES_HINT   2312

// One find and replace pair.
#define IDC_ITEM_FIND          2400
#define IDC_ITEM_REPLACE       2401
#define IDC_ITEM_GROUPS        2402
#define IDC_ITEM_MODES         2403
#define IDC_ITEM_MATCHES       2404
#define IDC_ITEM_FIND_LABEL    2410
#define IDC_ITEM_REPLACE_LABEL 2411

// Save a profile.
#define IDC_PROFILE_NAME       2500
#define IDC_PROFILE_NAME_LABEL 2510
