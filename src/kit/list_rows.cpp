#include "kit/list_rows.h"

#include "kit/handles.h"

static LRESULT FontHeight(HWND control) {
    const WindowDc dc(control);
    const Selection font(dc.dc, reinterpret_cast<HGDIOBJ>(SendMessageA(control, WM_GETFONT, 0, 0)));
    TEXTMETRICA metrics = {};
    GetTextMetricsA(dc.dc, &metrics);
    return metrics.tmHeight;
}

static void Fit(HWND control, UINT getHeight, UINT setHeight, WPARAM row) {
    const LRESULT height = FontHeight(control);
    if (SendMessageA(control, getHeight, row, 0) < height) SendMessageA(control, setHeight, row, height);
}

void FitListRows(HWND listBox) { Fit(listBox, LB_GETITEMHEIGHT, LB_SETITEMHEIGHT, 0); }

void FitComboRows(HWND comboBox) {
    Fit(comboBox, CB_GETITEMHEIGHT, CB_SETITEMHEIGHT, 0);
    Fit(comboBox, CB_GETITEMHEIGHT, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1));  // the field
}
