// access_resource.h - the numbers of the dialogs about access rights and of their controls.
#pragma once

// "Grant Permissions" is IDOK.
#define IDD_CHANGE_ACCESS        111
#define IDC_ACCESS_NOTE          1600
#define IDC_ACCESS_ACCOUNT       1601
#define IDC_ACCESS_FIND          1602
#define IDC_ACCESS_RIGHTS        1603
#define IDC_ACCESS_ACCOUNT_LABEL 1604
#define IDC_ACCESS_RIGHTS_LABEL  1605
