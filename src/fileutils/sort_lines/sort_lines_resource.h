// sort_lines_resource.h - the numbers of the dialogs about sorting and of their controls.
#pragma once

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
