// Identifiers of the program's resources (the string table ids are the
// numbers of resources/strings.txt).
#pragma once

#define IDD_APPSELECT 1000
#define IDC_FRM_APPLIST 1001
#define IDC_LBL_APPLIST 1002
#define IDC_LST_APPLICATION 1003
