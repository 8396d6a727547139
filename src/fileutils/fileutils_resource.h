// fileutils_resource.h - the numbers of the dialogs and their controls. Read by the resource compiler as well: so it
// holds nothing but comments and macros.
#pragma once

// Controls that several dialogs have. Their last two digits tell them from the system's buttons (ui/dialog_host.h).
#define IDC_HEADING         1010
#define IDC_WARNING         1011
#define IDC_FILES           1012
#define IDC_TARGET          1014
#define IDC_FILE_NAME       1015
#define IDC_REASON          1016  // why the dialog cannot start
#define IDC_FILES_LABEL     1017
#define IDC_TARGET_LABEL    1018
#define IDC_FILE_NAME_LABEL 1019

// "Grant Permissions" is IDOK.
#define IDD_CHANGE_ACCESS        111
#define IDC_ACCESS_NOTE          1600
#define IDC_ACCESS_ACCOUNT       1601
#define IDC_ACCESS_FIND          1602
#define IDC_ACCESS_RIGHTS        1603
#define IDC_ACCESS_ACCOUNT_LABEL 1604
#define IDC_ACCESS_RIGHTS_LABEL  1605

#define IDD_CREATE_LINKS       110
#define IDC_LINK_KIND          1500
#define IDC_LINK_FOLDER        1501
#define IDC_LINK_TARGETS       1502
#define IDC_LINK_NAME          1503
#define IDC_LINK_AS_ADMIN      1504
#define IDC_LINK_KIND_LABEL    1505
#define IDC_LINK_FOLDER_LABEL  1506
#define IDC_LINK_TARGETS_LABEL 1507
#define IDC_LINK_NAME_LABEL    1508
#define IDC_LINK_PICK_FOLDER   1509

#define IDD_REPLACE_IN_NAMES   103
#define IDC_NAME_FIND          1400
#define IDC_NAME_REPLACEMENT   1401
#define IDC_NAME_IGNORE_CASE   1402
#define IDC_NAME_PART          1403
#define IDC_NAME_PREVIEW       1404
#define IDC_NAME_FIND_LABEL    1405
#define IDC_NAME_REPLACE_LABEL 1406
#define IDC_NAME_PART_LABEL    1407
#define IDC_NAME_PREVIEW_LABEL 1408

#define IDD_FIND_AND_REPLACE 100
#define IDD_CONFIRM_REPLACE  101

#define IDC_FIND               1100
#define IDC_REPLACEMENT        1101
#define IDC_MODE               1102
#define IDC_REGULAR_EXPRESSION 1103
#define IDC_WILDCARD           1104
#define IDC_IGNORE_CASE        1105
#define IDC_FORCE_UTF8         1106
#define IDC_SILENT             1107
#define IDC_REPLACE_ALL        1108
#define IDC_FIND_LABEL         1109
#define IDC_REPLACEMENT_LABEL  1110
#define IDC_MODE_LABEL         1111

// The question about one match. "Replace" is IDOK, "Cancel" IDCANCEL.
#define IDC_MATCH_FILE              1200
#define IDC_MATCH_CONTEXT           1201
#define IDC_MATCH_REPLACEMENT       1202
#define IDC_MATCH_FILE_LABEL        1203
#define IDC_MATCH_CONTEXT_LABEL     1204
#define IDC_MATCH_REPLACEMENT_LABEL 1205
#define IDC_ANSWER_REPLACE_ALL      1210
#define IDC_ANSWER_FIND_NEXT        1211
#define IDC_SWITCH_UTF8             1212
#define IDC_ANSWER_SKIP_FILE        1213

#define IDD_SORT_LINES 102

#define IDC_KEEP_GROUP             1300
#define IDC_KEEP_TOP               1301
#define IDC_KEEP_BOTTOM            1302
#define IDC_KEY_GROUP              1303
#define IDC_LINE_OFFSET            1304
#define IDC_SKIP_SPACES            1305
#define IDC_KEY_LINE               1306  // the three kinds of key follow each other
#define IDC_KEY_SUBSTRING          1307
#define IDC_KEY_ITEM               1308
#define IDC_SUBSTRING_LENGTH       1309
#define IDC_END_CHARACTER          1310
#define IDC_END_AT_WHITESPACE      1311
#define IDC_ITEM_SEPARATOR         1312
#define IDC_ITEM_NUMBER            1313
#define IDC_ORDER_GROUP            1314
#define IDC_SORT_METHOD            1315
#define IDC_DATE_FORMAT            1316
#define IDC_DATE_MENU              1317
#define IDC_LANGUAGE_ORDER         1318
#define IDC_SORT_IGNORE_CASE       1319
#define IDC_NATURAL_NUMBERS        1320
#define IDC_REVERSE                1321
#define IDC_REMOVE_DUPLICATES      1322
#define IDC_REMOVE_BLANK_LINES     1323
#define IDC_KEEP_TOP_LABEL         1330
#define IDC_KEEP_TOP_NOTE          1331
#define IDC_KEEP_BOTTOM_LABEL      1332
#define IDC_KEEP_BOTTOM_NOTE       1333
#define IDC_LINE_OFFSET_LABEL      1334
#define IDC_SUBSTRING_LENGTH_LABEL 1335
#define IDC_END_CHARACTER_LABEL    1336
#define IDC_ITEM_SEPARATOR_LABEL   1337
#define IDC_ITEM_NUMBER_LABEL      1338
#define IDC_SORT_METHOD_LABEL      1339
#define IDC_DATE_FORMAT_LABEL      1340
