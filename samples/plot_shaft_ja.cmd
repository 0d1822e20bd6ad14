; }–Ê‚ğ•\¦‚µ‚Äo—Í‚·‚é
; DS-0350-02 ‹ì“®²

DIALOG_PREVIEW "drive_shaft_ja.lms"
LOAD "drive_shaft_ja.lms"
ZOOM ALL
PLOT A3
