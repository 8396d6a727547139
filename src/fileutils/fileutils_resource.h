// fileutils_resource.h - the numbers of controls that several dialogs have. Read by the resource compiler as well, as
// all these headers: they hold nothing but comments and macros.
#pragma once

#define IDC_HEADING         1000
#define IDC_WARNING         1001
#define IDC_FILES           1002
#define IDC_TARGET          1004
#define IDC_FILE_NAME       1005
#define IDC_REASON          1006  // why the dialog cannot start
#define IDC_FILES_LABEL     1007
#define IDC_TARGET_LABEL    1008
#define IDC_FILE_NAME_LABEL 1009
