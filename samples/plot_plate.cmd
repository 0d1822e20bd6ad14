; Plot the mounting plate
; MP-2040-01 Mounting plate

DIALOG_PREVIEW "mounting_plate.qa"
LOAD "mounting_plate.qa"
ZOOM ALL
PLOT A3
