// The library's file verbs: copy and move through a temporary name, so that
// no failure leaves the user with neither the old nor the new file; the
// deletion of a tree; a file's times.
#pragma once

#include <cstdint>
#include <string>

namespace ostrivane {

class Desktop;

// Told of a copy's progress; false cancels it.
using CopyProgress = bool (*)(std::uint64_t copied, std::uint64_t total);

// The name lib_CopyFile is writing, empty when no copy runs.
extern std::string lib_CopyTempPath;
// Non-zero stops the copy that runs; cleared before each copy.
extern std::int32_t lib_CopyCancel;

// Text of the last failed file call. A lost network file system reads
// "The specified network name is no longer available.", the one failure
// that is tried again.
std::string lib_LastErrorText();

// The target path, "~" and two random digits, never the target itself nor
// the name of anything that exists.
std::string lib_TempFileName(const std::string& target);

// True when every file matched was copied. A source with "*" or "?" names
// files of one folder and the target is a folder; otherwise a target ending
// in "/" takes the source's name and one without a folder the source's
// folder. Retries counts repeats after a lost network file system, 5 s
// apart with events handled. Failures are raised as base + 1000 with the
// source "Vexil.lib_CopyFile"; error receives the description.
bool lib_CopyFile(Desktop& desktop, const std::string& pstrSource, const std::string& pstrTarget,
                  bool pblnOverWrite, bool pblnAskRetry, CopyProgress plngProgress, std::int16_t pintRetries,
                  std::string& pstrError);
// The same for a move. Across file systems it is a copy, and the source goes
// to the trash.
bool lib_MoveFile(Desktop& desktop, const std::string& pstrSource, const std::string& pstrTarget,
                  bool pblnOverWrite, bool pblnAskRetry, std::int16_t pintRetries);
// Deletes a directory with its contents, to the trash unless noRecycle; with
// walk the directory itself stays, empty. A relative path, "/" and any mount
// point are refused with the critical box shown for msgValue seconds.
bool lib_Deltree(Desktop& desktop, const std::string& pstrDir, bool pblnWalk, std::int16_t pintMsgValue,
                 bool pblnNoRecycle);

// Creation (read only here: the last status change), last access and last
// write, in nanoseconds since 1970.
struct FileTimes {
    std::int64_t creation = 0;
    std::int64_t lastAccess = 0;
    std::int64_t lastWrite = 0;
};
bool lib_GetFileTimes(const std::string& pstrFile, FileTimes& times);
// Sets last access and last write. With force a read-only file is made
// writable for the moment and given back its mode.
bool lib_SetFileTimes(const std::string& pstrFile, const FileTimes& times, bool pblnForce);

// The current directory, then events handled; true on success.
bool lib_ChangeDir(Desktop& desktop, const std::string& pstrDir);

}  // namespace ostrivane
