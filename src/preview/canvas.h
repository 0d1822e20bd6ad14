// The memory bitmap that a reader draws on, with its pens and brushes.
#pragma once

#include <windows.h>

#include "kit/handles.h"
#include "preview/renderer.h"

// Bits of a reader's renderMode.
constexpr DWORD kRenderTextFrames = 1;  // texts as their bounding frames
constexpr DWORD kRenderColor = 2;       // a bitmap like the screen's, else one bit a pixel

constexpr int kPenCount = 16;
constexpr int kTextPen = 6;

// An empty bitmap of the target's size in the form that renderMode asks for; null when it cannot be made.
HBITMAP CreatePreviewBitmap(HDC screen, DWORD renderMode, const RECT& target);

// Everything of one run. Members leave in reverse order: the device context goes before what is selected into it.
struct Canvas {
    RECT target = {};
    UniqueBitmap bitmap;
    UniqueBrush white, black;
    UniquePen pens[kPenCount];
    TextFont textFont;
    UniqueDc dc;
    HGDIOBJ originalBitmap = nullptr;
    int wantedPen = 0, selectedPen = -1;
    ViewTransform view = {};
    PreviewPrimitive primitive;  // reused for every element, see there
};

// Makes a white canvas of the target's size; false when a context, the bitmap or a brush cannot be made.
bool OpenCanvas(Canvas* canvas, DWORD renderMode, const RECT& target);

// Fits the drawing's extents and wipes the canvas.
void FitCanvas(Canvas* canvas, const WorldRect& extents);

// Draws from now on with pen `index` modulo 16. It is selected for the next element that needs a pen, which points and
// texts do not; a pen that could not be made leaves the selection as it is.
void SelectCanvasPen(Canvas* canvas, unsigned index);

// Draws canvas->primitive.
void DrawOnCanvas(Canvas* canvas);

// Gives the bitmap to the caller; the canvas draws no more.
HBITMAP ReleaseCanvasBitmap(Canvas* canvas);
