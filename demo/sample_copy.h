// A copy of the samples in a folder with a plain name, for pictures that look the same wherever they are taken.
#pragma once

#include <string>

// Makes a new folder in the root of drive C: and copies the sample files of `samples` into it. Returns its path, or an
// empty text when the folder could not be made or a file not be copied; then nothing is left behind.
std::string CopySamples(const std::string& samples);

// Adds so many further copies of one of the files to such a folder, and takes them away again. Their names come before
// all others.
void AddManyCopies(const std::string& folder, const std::string& name, int count);
void RemoveManyCopies(const std::string& folder);

// Deletes the files of such a folder and the folder.
void RemoveSampleCopy(const std::string& folder);
