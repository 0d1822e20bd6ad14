// The nodes of a tree view that shows the folders of the shell's namespace, one level at a time.
//
// Every node's parameter is a ShellItem, which the view's owner frees with FreeNode when the node is deleted. The shell
// may let messages flow while it is asked: nobody may delete nodes until these functions return.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "dirsel/shell_item.h"

// Empties the view and fills its root level with the folders of the desktop.
void FillRoot(HWND view);

// Fills the level below a node that has none yet.
void FillNode(HWND view, HTREEITEM node);

// The item of a node; null for none.
ShellItem* ItemOfNode(HWND view, HTREEITEM node);
void FreeNode(const TVITEMA& deleted);

// The item's path, or what the shell uses for one where there are no files, ending in a backslash. Empty on failure.
std::string FolderPath(const ShellItem& item);

// The path by which SelectPath knows an item of that name, ending in a backslash; the names of the network's computers
// may lack their two backslashes. Empty for an empty name.
std::string StepPath(std::string name, bool inNetwork);

// Selects the folder that the path names, below the network neighbourhood or the computer's drives, and expands the
// nodes above it. What cannot be found leaves the selection at the deepest folder on the way.
//
// Deliberate: "C:\WORK" is found as the last but one step to "C:\WORK\" would be, so it selects "C:\". A host that
// leaves the backslash out would get "C:\WORK\" from an OK at once, where it gets "C:\" now.
void SelectPath(HWND view, const std::string& path);
