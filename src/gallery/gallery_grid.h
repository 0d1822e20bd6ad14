// The gallery's grid: how its cells lie in the list box, and what is drawn in one.
#pragma once

#include <windows.h>

// Made once, when the dialog opens: thumbnails of one size last as long as it does.
struct GalleryGrid {
    SIZE cell = {};       // the least size of a cell
    RECT thumbnail = {};  // a picture's, at the origin
};

// The grid of four columns and three rows that fills the list as it is now.
GalleryGrid MakeGalleryGrid(HWND list);

// Divides the list among as many whole cells as it has room for, at least one.
void FitGalleryGrid(HWND list, const GalleryGrid& grid);

// The size that a grid of that many whole cells takes away from the one that MakeGalleryGrid has measured.
SIZE GalleryGridShrink(const GalleryGrid& grid, int columns, int rows);

// Draws an item of the list: its name and, where the whole item is asked for, its picture (null: none).
void DrawGalleryCell(const DRAWITEMSTRUCT& draw, const GalleryGrid& grid, const char* name, HBITMAP picture);
