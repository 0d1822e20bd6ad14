/* Ids of the demo host's resources. */
#pragma once

#define IDD_HOST 1000

#define IDC_OPEN_WITH_PREVIEW 1001
#define IDC_OPEN 1002
#define IDC_SAVE 1003
#define IDC_CHOOSE_FOLDER 1004
#define IDC_PARAMETERS 1005
#define IDC_CLASSIC_STYLE 1010
#define IDC_SHORT_NAMES 1011
#define IDC_RESULT 1012
#define IDC_FULL_DXF 1013

#define IDS_FILTER 1 /* '|' stands for the zeros of a filter list */
#define IDS_OPEN_TITLE 2
#define IDS_SAVE_TITLE 3
#define IDS_FOLDER_TITLE 4
#define IDS_CHOSEN 5 /* path */
#define IDS_CANCELLED 6

/* The parameter dialog. */
#define IDD_PARAMETERS 1100
#define IDD_CUTTING_PAGE 1101
#define IDD_TOOL_PAGE 1102

#define IDC_PART 1110
#define IDC_MACHINE 1111
#define IDC_PAGES 1112
#define IDC_SIMULATE 1113
#define IDC_SKIP 1114

#define IDC_SPEED 1120
#define IDC_FEED 1121
#define IDC_DEPTH 1122
#define IDC_ANGLE 1123
#define IDC_FINISH 1124 /* and the two behind it */
#define IDC_COOLANT 1127

#define IDC_TOOL_KIND 1130
#define IDC_DIAMETER 1131
#define IDC_TEETH 1132
#define IDC_LENGTH 1133
#define IDC_CARBIDE 1134

#define IDS_MACHINE 32
#define IDS_MACHINE_FORMAT 33
#define IDS_FINISHES 34   /* '|' ends an entry */
#define IDS_TOOL_KINDS 35 /* the same */
#define IDS_COOLANT 36
#define IDS_CARBIDE 37
#define IDS_PARAMETERS_TAKEN 38 /* part, speed, depth, diameter */
#define IDS_SIMULATION 39       /* the same */
#define IDS_SKIPPED 40          /* part */

/* Extensions of the drawings among the samples, in a filter list. */
#define DRAWING_FILTER "*.qa;*.lms;*.qj;*.qf;*.lbk;*.exf;*.dxf;*.cmd"

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif
