// Identifiers of the program's resources (the string table ids are the
// numbers of resources/strings.txt).
#pragma once

#define IDD_APPSELECT 1000
#define IDC_FRM_APPLIST 1001
#define IDC_LBL_APPLIST 1002
#define IDC_LST_APPLICATION 1003

#define IDD_MENUDEF 1100
#define IDR_MENUDEF 1101
#define IDC_LBL_TREE 1102
#define IDC_TRV_MENU 1103
#define IDC_LBL_NAME 1104
#define IDC_TXT_NAME 1105
#define IDC_LBL_COMMAND 1106
#define IDC_TXT_COMMAND 1107
#define IDC_LBL_HOTKEY 1108
#define IDC_TXT_HOTKEY 1109
#define IDC_CMD_APPLY 1110

#define IDM_NEW 1201
#define IDM_EDIT 1202
#define IDM_COPY 1203
#define IDM_CUT 1204
#define IDM_PASTE 1205
#define IDM_PASTE_NEXT 1206
#define IDM_PASTE_CHILD 1207
#define IDM_DELETE 1208
#define IDM_MOVE_UP 1209
#define IDM_MOVE_DOWN 1210
#define IDM_PREVIEW 1211
