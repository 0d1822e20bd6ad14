// Which reader serves which kind of file.
#pragma once

#include "preview/file_type.h"
#include "preview/reader.h"

// The reader of the file dialog's pane and of the gallery for a kind; null when the kind has nothing to show there.
PreviewReader PaneReaderFor(FileTypeCode code);
PreviewReader GalleryReaderFor(FileTypeCode code);
