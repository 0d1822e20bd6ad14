// Which reader serves which kind of file.
#pragma once

#include "preview/file_type.h"
#include "preview/reader.h"

// The reader of the file dialog's pane, of the gallery, and for what a command file names; null when the kind has
// nothing to show there. What a command file names in its turn is not followed.
PreviewReader PaneReaderFor(FileTypeCode code);
PreviewReader GalleryReaderFor(FileTypeCode code);
PreviewReader CommandReaderFor(FileTypeCode code);

// What IdentifyFileType and the gallery's reader give for a file, without a comment; the file is opened only once. A
// folder of small files takes a fifth less time so.
HBITMAP PreviewForGallery(DWORD renderMode, const char* fileName, const RECT& target);

// How the pane shows a kind whose bytes are in memory already, for PreviewBytes; null for kinds that show nothing or
// need a file: programs and command files.
const PreviewFormat* FormatOf(FileTypeCode code);
