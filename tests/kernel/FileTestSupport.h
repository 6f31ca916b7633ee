#pragma once

#include "kernel/KFile.h"
#include "kernel/KPath.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <glib.h>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

// Helpers of the file, class stream and disk object tests.
namespace filetest {

// A fresh folder under the temporary folder, removed with its contents at
// the end of the scope.
class TempFolder {
public:
    TempFolder()
    {
        std::string pattern = std::string(g_get_tmp_dir()) + "/taleloom-file-XXXXXX";
        if (!mkdtemp(pattern.data()))
            std::abort();
        root = pattern;
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& path() const { return root; }
    std::string file(const std::string& name) const { return root + "/" + name; }
    // A KPath for a file or folder inside.
    KPath pathOf(const std::string& name) const { return KPath(KString(file(name).c_str()), KPath::LinuxPlatform); }
    KPath folderPath() const { return KPath(KString((root + "/").c_str()), KPath::LinuxPlatform); }

private:
    std::string root;
};

inline std::vector<uint8_t> bytesOf(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void writeBytes(const std::string& file, const std::vector<uint8_t>& bytes)
{
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

inline std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    return names;
}

// A file opened fresh (created and truncated) in direct or memory mode.
inline void openForWriting(KFile& file, KFileMode mode)
{
    file.setMode(mode);
    file.create();
    file.open();
}

// Restores the process's current directory at the end of the scope.
class CurrentDirectoryGuard {
public:
    CurrentDirectoryGuard()
        : saved(std::filesystem::current_path())
    {
    }
    ~CurrentDirectoryGuard()
    {
        std::error_code ignored;
        std::filesystem::current_path(saved, ignored);
    }

private:
    std::filesystem::path saved;
};

} // namespace filetest
