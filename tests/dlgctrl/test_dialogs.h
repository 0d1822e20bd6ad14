/* Ids of the templates that the tests of the dialog controller run. */
#pragma once

#define IDD_CONTROLS 201 /* a control of each kind */
#define IDD_PAGE_ONE 202 /* pages; they have a field IDC_FIELD */
#define IDD_PAGE_TWO 203
#define IDD_SMALL 204      /* a field and a tab control */
#define IDD_LOOSE_PAGE 205 /* a page that is no child */

#define IDC_FIELD 301
#define IDC_OTHER_FIELD 302
#define IDC_CHECK 311
#define IDC_COMBO 331
#define IDC_LABEL 341
#define IDC_BUTTON 351
#define IDC_OTHER_BUTTON 352
#define IDC_TABS 361
#define IDC_PLAIN 362
#define IDC_RADIO 391 /* three; no id of the template is higher */
#define IDC_MISSING 399
