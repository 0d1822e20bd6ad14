#include "frame/dialog_icons.h"

#include "frame/module.h"
#include "resources/resource.h"

// Not shared: the system would give the size that was asked for first to whoever asks for another.
static UniqueIcon LoadOf(int widthMetric, int heightMetric) {
    return UniqueIcon(
        static_cast<HICON>(LoadImageA(ThisModule(), MAKEINTRESOURCEA(IDI_KWDIALOGS), IMAGE_ICON,
                                      GetSystemMetrics(widthMetric), GetSystemMetrics(heightMetric), LR_DEFAULTCOLOR)));
}

void ShowDialogIcons(HWND dialog, DialogIcons* icons) {
    icons->large = LoadOf(SM_CXICON, SM_CYICON);
    icons->small = LoadOf(SM_CXSMICON, SM_CYSMICON);
    SendMessageA(dialog, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icons->large.get()));
    SendMessageA(dialog, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icons->small.get()));
}
