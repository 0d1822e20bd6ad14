// The pages of a container: modeless dialogs of which one is shown at a time, with a tab each when the container is a
// tab control.
//
// A set is a handle to movable global memory. Every operation lets other code run and stays safe when that destroys
// pages, the container or the set itself.
#pragma once

#include <windows.h>

// An empty set for a container; null when the control does not exist or memory runs out.
HGLOBAL CreatePageSet(HWND container);

// Adds a page, which then belongs to the set, and returns the new number of pages; -1 when either handle is null, and,
// with the page destroyed, when memory runs out. Takes the page's frame and its OK and Cancel buttons away.
int AddPage(HGLOBAL set, HWND page, DWORD userValue);

// Shows a page instead of the one before, whose index it returns; -1 when the index is no page's or the page is shown
// already.
int SelectPage(HGLOBAL set, int index);

// Destroys a page and its tab. Deliberate: the number of pages stays; else the indices that a caller holds would mean
// the pages behind the ones that it knows.
int RemovePage(HGLOBAL set, int index);

// Destroys the pages, the tabs and the set.
int DestroyPageSet(HGLOBAL set);

// Sends the command to every page that still exists.
void CommandPages(HGLOBAL set, WORD commandId);

int CurrentPage(HGLOBAL set);  // -1 before the first selection and for a null set
int PageCount(HGLOBAL set);    // -1 for a null set

constexpr int kOwnerWindow = -1;  // instead of a page's index
constexpr int kTabControl = -2;   // null when the container is none

// A page's window and, when wanted, its user value; null when there is none.
HWND PageWindow(HGLOBAL set, int index, DWORD* userValue = nullptr);
