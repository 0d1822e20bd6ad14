/* Ids of the library's resources. */
#pragma once

/* Dialog templates */
#define IDD_FILE_SELECTION 108 /* classic file dialog */
#define IDD_PREVIEW_PANE 118   /* child of the Explorer-style file dialog */
#define IDD_GALLERY 128
#define IDD_DIRECTORY_SELECTION 126
#define IDD_FOLDER_TREE 129

#define IDB_PREVIEW_BUTTON 127

#define IDI_KWDIALOGS 130

/* Strings */
#define IDS_OVERWRITE 10
#define IDS_LOADING 11
#define IDS_NO_PREVIEW 12
#define IDS_TEXT_FACE 20
#define IDS_DRAWING_NAME 35
#define IDS_DRAWING_NUMBER 36
#define IDS_DESIGNER 37
#define IDS_INVALID_VALUE 40
#define IDS_INITIAL_ERROR 41
#define IDS_DXF_TITLE 50
#define IDS_DXF_VERSION 51
#define IDS_DXF_UNIT 52
#define IDS_DXF_SIZE 53
#define IDS_DXF_ENTITIES 54
#define IDS_DXF_LAYERS 55
#define IDS_DXF_BLOCKS 56
#define IDS_GALLERY_TIP 57

/* Controls of the common dialogs that the templates carry */
#define IDC_HELP_BUTTON 1038
#define IDC_READ_ONLY 1040
#define IDC_DIRECTORY_PATH 1088
#define IDC_TYPE_LABEL 1089
#define IDC_FILE_LABEL 1090
#define IDC_DRIVE_LABEL 1091
#define IDC_STANDARD_CONTROLS 1119
#define IDC_FILE_LIST 1120
#define IDC_DIRECTORY_LIST 1121
#define IDC_TYPE_COMBO 1136
#define IDC_DRIVE_COMBO 1137
#define IDC_FILE_NAME_COMBO 1148
#define IDC_FILE_NAME 1152

#ifndef IDC_STATIC
#define IDC_STATIC (-1) /* labels and frames that nobody addresses */
#endif

/* Controls of template 108 */
#define IDC_SORT_NAME 1003
#define IDC_SORT_EXTENSION 1004
#define IDC_SORT_SIZE 1005
#define IDC_SORT_DATE 1006
#define IDC_SHOW_SIZE 1007
#define IDC_SHOW_DATE 1008
#define IDC_SHOW_TIME 1009
#define IDC_SHOW_COMMENT 1010
#define IDC_DRIVE_TOTAL 1011
#define IDC_DRIVE_FREE 1012
#define IDC_DRIVE_USED 1013

/* Controls of template 118 */
#define IDC_PREVIEW_PICTURE 1007
#define IDC_PREVIEW_COMMENT 1061
#define IDC_PREVIEW_GALLERY 1063

/* Controls of template 128 */
#define IDC_GALLERY_LIST 1064
#define IDC_GALLERY_PROGRESS 1065
#define IDC_GALLERY_STATUS 1066
/* Controls of template 129 */
#define IDC_FOLDER_TREE 1068
