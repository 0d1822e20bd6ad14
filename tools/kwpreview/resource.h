/* Ids of kwpreview's texts. The library's own resources are linked in too and end below 60. */
#pragma once

/* Lines of --help: from here on, until one is missing. */
#define IDS_HELP 1000

/* Usage errors */
#define IDS_UNKNOWN_OPTION 400 /* %1 the option */
#define IDS_MISSING_VALUE 401  /* %1 the option */
#define IDS_BAD_SIZE 402       /* %1 the value, %2 and %3 the smallest and the largest side */
#define IDS_NO_INPUT 403
#define IDS_SEE_HELP 404
#define IDS_ONE_FILE 405 /* %1 the value of -o */

/* The report */
#define IDS_PICTURE 410    /* %1 input, %2 PNG file, %3 and %4 its width and height */
#define IDS_NO_PICTURE 411 /* %1 input, %2 why */
#define IDS_KIND_LINE 412  /* %1 word, %2 description */
#define IDS_COMMENT_LINE 413
#define IDS_NO_COMMENT_LINE 414
#define IDS_SUMMARY 415   /* %1 pictures, %2 inputs */
#define IDS_PROGRESS 416  /* %1 number, %2 count, %3 input, %4 seconds */
#define IDS_NO_FOLDER 417 /* %1 the folder, %2 the system's message */
#define IDS_NO_OUTPUT 418
#define IDS_ONLY_FULL_DXF 419

/* Descriptions of kinds: IDS_KIND + FileTypeCode, which ends at 26 */
#define IDS_KIND 420

/* Why there is no picture: IDS_WHY + NoPicture */
#define IDS_WHY 460
