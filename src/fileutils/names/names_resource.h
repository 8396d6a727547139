// names_resource.h - the numbers of the dialogs about names and of their controls.
#pragma once

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
