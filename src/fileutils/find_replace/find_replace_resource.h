// find_replace_resource.h - the numbers of the dialogs about find and replace and of their controls.
#pragma once

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
