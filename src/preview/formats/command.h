// Command files: texts in which the first well-formed line DIALOG_PREVIEW "path" names the drawing to preview.
#pragma once

#include <string>

#include "preview/formats/comment.h"

constexpr std::size_t kMaxPath = 260;  // its ending zero included

// Takes the command file's text as the comment and returns the path that it names, as it stands there; empty when it
// names none.
std::string TakeCommandFile(ByteView file, Comment* comment);

// That path taken relative to the folder of the command file, without touching the process's current directory; empty
// for an empty one and when it becomes longer than a path can be.
std::string ResolveBeside(const char* commandFile, const std::string& path);
