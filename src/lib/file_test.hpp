// Whether a file is there, and its deletion, to the trash where it can go.
#pragma once

#include <string>

namespace ostrivane {

class Trash;

// Where lib_KillFile sends files; without one every deletion is for good.
void lib_AttachTrash(Trash* trash);

// True when a file, not a directory, matches the path, whose last part may
// hold the wildcards * and ?. foundFile receives the bare name of the first
// such file, or with nameOnly false its folder joined with the name.
bool lib_FileExists(const std::string& file, std::string& foundFile, bool nameOnly);
// True when the file is gone afterwards, or was not there. It goes to the
// trash unless noRecycle; a file the trash refused and nobody holds is
// deleted for good. A traced routine ("Vexil.lib_KillFile").
bool lib_KillFile(const std::string& file, bool noRecycle);
// True when renaming the file onto itself fails with an error other than
// "not found" and "unavailable".
bool lib_IsFileLocked(const std::string& file);

}  // namespace ostrivane
