// ui_resource.h - the numbers of the resources that all dialogs share. Read by the resource compiler as well, so it
// holds nothing but comments and macros.
#pragma once

#define QV_CONTROLS_MANIFEST 2  // the number that a library's manifest has; a program's own is 1
