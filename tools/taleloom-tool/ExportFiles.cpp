#include "tools/taleloom-tool/ExportFiles.h"

#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

ExportFolder::ExportFolder(const char* prefix)
{
    std::string pattern = (fs::temp_directory_path() / (std::string(prefix) + "-XXXXXX")).string();
    if (mkdtemp(pattern.data()))
        path = pattern;
}

ExportFolder::~ExportFolder()
{
    std::error_code ignored;
    if (!path.empty())
        fs::remove_all(path, ignored);
}

bool exportTargetUsable(const std::string& target, std::string& reason)
{
    fs::path folder = fs::path(target).parent_path();
    std::error_code failed;
    if (!fs::is_directory(folder.empty() ? fs::path(".") : folder, failed) || fs::is_directory(target, failed)) {
        reason = target + ": cannot be written: no such folder";
        return false;
    }
    return true;
}
