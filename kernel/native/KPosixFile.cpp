// POSIX file access for KFile and the disk objects.

#include "kernel/native/KNativeFiles.h"

#include "kernel/KError.h"
#include "kernel/KErrorHandler.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int32_t lastErrno(int fallback = EIO)
{
    int32_t code = KErrorHandler::mapErrno(errno);
    return code ? code : KErrorHandler::mapErrno(fallback);
}

// The file-system name of a path, or false when it is too long to pass on.
bool systemName(const KString& path, std::string& out)
{
    out = knsFileSystemName(path);
    return !out.empty() && out.size() < size_t(kMaxPathLength);
}

int32_t badName(const KString& path) { return path.isEmpty() ? KError::NoFilename : KError::UnknownFileError; }

int openRetrying(const char* name, int flags, mode_t permissions = 0)
{
    int fd;
    do {
        fd = ::open(name, flags | O_CLOEXEC, permissions);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

KNativeFileStamp stampOf(time_t seconds)
{
    struct tm local { };
    localtime_r(&seconds, &local);
    KNativeFileStamp stamp;
    stamp.year = int16_t(local.tm_year + 1900);
    stamp.month = int16_t(local.tm_mon + 1);
    stamp.day = int16_t(local.tm_mday);
    stamp.hour = int16_t(local.tm_hour);
    stamp.minute = int16_t(local.tm_min);
    stamp.second = int16_t(local.tm_sec);
    return stamp;
}

std::string folderOf(const std::string& name)
{
    size_t slash = name.rfind('/');
    if (slash == std::string::npos)
        return ".";
    if (slash == 0)
        return "/";
    return name.substr(0, slash);
}

// Makes the rename of a file durable: the folder entry is flushed too.
void syncFolder(const std::string& folder)
{
    int fd = openRetrying(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

int32_t copyBytes(int from, int to)
{
    char block[65536];
    for (;;) {
        ssize_t got = ::read(from, block, sizeof block);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return lastErrno();
        if (got == 0)
            return 0;
        if (int32_t code = knsFileWrite(to, block, int32_t(got)))
            return code;
    }
}

} // namespace

int32_t knsFileCreate(const KString& path)
{
    std::string name;
    if (!systemName(path, name))
        return badName(path);
    int fd = openRetrying(name.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666);
    if (fd < 0)
        return lastErrno();
    return knsFileClose(fd);
}

int32_t knsFileOpen(const KString& path, int* handle)
{
    *handle = kNoFileHandle;
    std::string name;
    if (!systemName(path, name))
        return badName(path);
    int fd = openRetrying(name.c_str(), O_RDWR);
    if (fd < 0)
        fd = openRetrying(name.c_str(), O_RDONLY);
    if (fd < 0)
        return lastErrno();
    struct stat info { };
    if (::fstat(fd, &info) == 0 && S_ISDIR(info.st_mode)) {
        ::close(fd);
        return KErrorHandler::mapErrno(EISDIR);
    }
    *handle = fd;
    return 0;
}

int32_t knsFileClose(int handle)
{
    if (handle < 0)
        return KError::FileNotOpen;
    // A close interrupted by a signal has released the descriptor on Linux
    // anyway; retrying could close somebody else's.
    if (::close(handle) != 0 && errno != EINTR)
        return lastErrno();
    return 0;
}

int32_t knsFileRead(int handle, void* buffer, int32_t size, int32_t* done)
{
    *done = 0;
    auto* out = static_cast<char*>(buffer);
    while (*done < size) {
        ssize_t got = ::read(handle, out + *done, size_t(size - *done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0) {
            int32_t code = got < 0 ? KErrorHandler::mapErrno(errno) : 0;
            return code ? code : int32_t(KError::EndOfFile);
        }
        *done += int32_t(got);
    }
    return 0;
}

int32_t knsFileWrite(int handle, const void* buffer, int32_t size)
{
    auto* in = static_cast<const char*>(buffer);
    int32_t done = 0;
    while (done < size) {
        ssize_t put = ::write(handle, in + done, size_t(size - done));
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            return lastErrno();
        if (put == 0)
            return KError::CouldNotWriteFile;
        done += int32_t(put);
    }
    return 0;
}

int32_t knsFileSeek(int handle, int64_t position)
{
    if (position < 0)
        return KError::UnknownFileError;
    if (::lseek(handle, off_t(position), SEEK_SET) < 0)
        return lastErrno();
    return 0;
}

int64_t knsFilePosition(int handle)
{
    off_t position = ::lseek(handle, 0, SEEK_CUR);
    return position < 0 ? 0 : int64_t(position);
}

int32_t knsFileSize(int handle, int64_t* size)
{
    struct stat info { };
    *size = 0;
    if (::fstat(handle, &info) != 0)
        return lastErrno();
    *size = int64_t(info.st_size);
    return 0;
}

int32_t knsFileSync(int handle)
{
    if (::fsync(handle) != 0 && errno != EINVAL && errno != EROFS)
        return lastErrno();
    return 0;
}

int32_t knsFileCreateTemporary(const KString& target, int* handle, KString& temporaryPath)
{
    *handle = kNoFileHandle;
    std::string name;
    if (!systemName(target, name))
        return badName(target);
    // The temporary name must fit as well, since it is the target's plus a suffix.
    std::string pattern = name + ".tmp-XXXXXX";
    if (pattern.size() >= size_t(kMaxPathLength))
        return KError::UnknownFileError;
    int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd < 0)
        return lastErrno();
    struct stat old { };
    mode_t permissions;
    if (::stat(name.c_str(), &old) == 0) {
        permissions = old.st_mode & 07777;
    } else {
        mode_t mask = ::umask(0);
        ::umask(mask);
        permissions = 0666 & ~mask;
    }
    ::fchmod(fd, permissions);
    *handle = fd;
    temporaryPath = knsHostName(pattern.c_str());
    return 0;
}

int32_t knsFileReplace(const KString& temporaryPath, const KString& target)
{
    std::string from;
    std::string to;
    if (!systemName(temporaryPath, from) || !systemName(target, to))
        return KError::UnknownFileError;
    if (::rename(from.c_str(), to.c_str()) != 0)
        return lastErrno();
    syncFolder(folderOf(to));
    return 0;
}

int32_t knsFileRemove(const KString& path)
{
    std::string name;
    if (!systemName(path, name))
        return badName(path);
    if (::unlink(name.c_str()) != 0)
        return lastErrno();
    return 0;
}

int32_t knsFileRename(const KString& from, const KString& to)
{
    std::string a;
    std::string b;
    if (!systemName(from, a) || !systemName(to, b))
        return KError::UnknownFileError;
    if (::rename(a.c_str(), b.c_str()) != 0)
        return lastErrno();
    return 0;
}

int32_t knsFileCopy(const KString& from, const KString& to, bool* accessDenied)
{
    *accessDenied = false;
    std::string a;
    std::string b;
    if (!systemName(from, a) || !systemName(to, b))
        return KError::UnknownFileError;
    int in = openRetrying(a.c_str(), O_RDONLY);
    if (in < 0) {
        *accessDenied = errno == EACCES || errno == EPERM;
        return lastErrno();
    }
    struct stat info { };
    ::fstat(in, &info);
    int out = openRetrying(b.c_str(), O_WRONLY | O_CREAT | O_TRUNC, info.st_mode & 0777);
    if (out < 0) {
        *accessDenied = errno == EACCES || errno == EPERM;
        int32_t code = lastErrno();
        ::close(in);
        return code;
    }
    int32_t code = copyBytes(in, out);
    ::close(in);
    if (::close(out) != 0 && !code && errno != EINTR)
        code = lastErrno();
    return code;
}

bool knsFileInfo(const KString& path, KNativeFileInfo& info)
{
    info = KNativeFileInfo();
    std::string name;
    if (!systemName(path, name))
        return false;
    struct statx extended { };
    if (::statx(AT_FDCWD, name.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &extended) != 0)
        return false;
    info.exists = true;
    info.isDirectory = S_ISDIR(extended.stx_mode);
    info.size = int64_t(extended.stx_size);
    info.modified = stampOf(time_t(extended.stx_mtime.tv_sec));
    // Not every file system records a birth time; the change time stands in.
    bool hasBirth = (extended.stx_mask & STATX_BTIME) != 0;
    info.created = stampOf(time_t(hasBirth ? extended.stx_btime.tv_sec : extended.stx_ctime.tv_sec));
    return true;
}

int32_t knsDirectoryCreate(const KString& path)
{
    std::string name;
    if (!systemName(path, name))
        return badName(path);
    if (::mkdir(name.c_str(), 0777) != 0)
        return lastErrno();
    return 0;
}

int32_t knsDirectoryRemove(const KString& path)
{
    std::string name;
    if (!systemName(path, name))
        return badName(path);
    if (::rmdir(name.c_str()) != 0)
        return lastErrno();
    return 0;
}

int32_t knsDirectoryList(const KString& path, std::vector<KNativeDirectoryEntry>& entries)
{
    entries.clear();
    std::string name;
    if (!systemName(path, name))
        return badName(path);
    DIR* folder = ::opendir(name.c_str());
    if (!folder)
        return lastErrno();
    std::vector<std::pair<std::string, bool>> found;
    while (dirent* entry = ::readdir(folder)) {
        if (!std::strcmp(entry->d_name, ".") || !std::strcmp(entry->d_name, ".."))
            continue;
        bool isDirectory = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN || entry->d_type == DT_LNK) {
            struct stat info { };
            std::string full = name + "/" + entry->d_name;
            isDirectory = ::stat(full.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
        }
        found.emplace_back(entry->d_name, isDirectory);
    }
    ::closedir(folder);
    std::sort(found.begin(), found.end());
    entries.reserve(found.size());
    for (const auto& [entryName, isDirectory] : found)
        entries.push_back({ knsHostName(entryName.c_str()), isDirectory });
    return 0;
}

int32_t knsSetCurrentDirectory(const KString& path)
{
    std::string name;
    if (!systemName(path, name))
        return badName(path);
    if (::chdir(name.c_str()) != 0)
        return lastErrno();
    return 0;
}
