// links_resource.h - the numbers of the dialogs about links and of their controls.
#pragma once

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
