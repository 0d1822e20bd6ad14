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

#define IDS_FILTER 1 /* '|' stands for the zeros of a filter list */
#define IDS_OPEN_TITLE 2
#define IDS_SAVE_TITLE 3
#define IDS_FOLDER_TITLE 4
#define IDS_CHOSEN 5 /* path */
#define IDS_CANCELLED 6

/* Extensions of the drawings among the samples, in a filter list. */
#define DRAWING_FILTER "*.qa;*.lms;*.qj;*.qf;*.lbk;*.exf;*.dxf;*.cmd"

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif
