#pragma once

#include "kernel/KString.h"

#include <cstdint>
#include <string>
#include <vector>

// The file system side of the native layer. Paths are the host's 8-bit text
// (the Windows character set) in Linux spelling; each function converts them
// to the file system's encoding (UTF-8). Functions that can fail return a
// kernel file code: 0 for success, errno mapped by KErrorHandler::mapErrno.

// POSIX descriptors start at 0, so "no handle" is -1.
constexpr int kNoFileHandle = -1;
// The longest path the file layer accepts (PATH_MAX); longer ones are refused
// before the system sees them.
constexpr int32_t kMaxPathLength = 4096;

// A date and a clock time in local time.
struct KNativeFileStamp {
    int16_t year = 0;
    int16_t month = 0;
    int16_t day = 0;
    int16_t hour = 0;
    int16_t minute = 0;
    int16_t second = 0;
};

struct KNativeFileInfo {
    bool exists = false;
    bool isDirectory = false;
    int64_t size = 0;
    KNativeFileStamp created;
    KNativeFileStamp modified;
};

struct KNativeDirectoryEntry {
    KString name;
    bool isDirectory = false;
};

// The well-known folders, in the order KFileSystem keeps them.
enum KNativeFolder : int32_t {
    KNativeFolderCommonApplicationData = 0,
    KNativeFolderApplication = 1,
    KNativeFolderUserApplicationData = 2,
    KNativeFolderTemporary = 3,
    KNativeFolderDocuments = 4,
    KNativeFolderPictures = 5,
    KNativeFolderMusic = 6,
    KNativeFolderVideo = 7,
    KNativeFolderDesktop = 8,
    KNativeFolderCurrent = 9,
};

// Host text to a file-system name and back (through KTextCodec).
std::string knsFileSystemName(const KString& path);
KString knsHostName(const char* fileSystemName);

// Creates or truncates a file with read and write access, and closes it.
int32_t knsFileCreate(const KString& path);
// Opens an existing file for reading and writing, failing that for reading.
int32_t knsFileOpen(const KString& path, int* handle);
int32_t knsFileClose(int handle);
// Reads up to `size` bytes; `done` gets the count. A short read returns the
// mapped errno, or 40 (end of file) when errno says nothing.
int32_t knsFileRead(int handle, void* buffer, int32_t size, int32_t* done);
int32_t knsFileWrite(int handle, const void* buffer, int32_t size);
int32_t knsFileSeek(int handle, int64_t position);
int64_t knsFilePosition(int handle);
int32_t knsFileSize(int handle, int64_t* size);
// Flushes the file's data to the device.
int32_t knsFileSync(int handle);

// An empty file beside `target` with a unique name, open for writing, with
// the target's permissions when it exists.
int32_t knsFileCreateTemporary(const KString& target, int* handle, KString& temporaryPath);
// Renames `temporaryPath` over `target` and flushes the folder entry.
int32_t knsFileReplace(const KString& temporaryPath, const KString& target);

int32_t knsFileRemove(const KString& path);
int32_t knsFileRename(const KString& from, const KString& to);
// Copies a file, overwriting `to`; `accessDenied` tells a refusal by
// permissions apart from other failures.
int32_t knsFileCopy(const KString& from, const KString& to, bool* accessDenied);
bool knsFileInfo(const KString& path, KNativeFileInfo& info);

int32_t knsDirectoryCreate(const KString& path);
int32_t knsDirectoryRemove(const KString& path);
// The entries of a folder without "." and "..", sorted by name.
int32_t knsDirectoryList(const KString& path, std::vector<KNativeDirectoryEntry>& entries);

bool knsCurrentDirectory(KString& out);
int32_t knsSetCurrentDirectory(const KString& path);
// `text` made absolute against the current directory, with "." and ".."
// resolved, in Linux spelling.
KString knsAbsolutePath(const KString& text);
// A well-known folder in Linux spelling, without a trailing separator.
bool knsSpecialFolder(int32_t folder, KString& out);
// The running program's file in Linux spelling.
KString knsProgramFile();

// Raw data compiled into the program as a GResource under
// "/org/taleloom/rcdata/<id>". The block comes from KMemory.
bool knsReadProgramResource(int16_t id, void** data, int32_t* size);
// The same for a resource named by its whole path, such as
// "/org/taleloom/art/play.png".
bool knsReadProgramResourcePath(const char* path, void** data, int32_t* size);
