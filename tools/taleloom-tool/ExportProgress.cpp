#include "tools/taleloom-tool/ExportProgress.h"

#include <csignal>

ExportProgressLines::ExportProgressLines(std::ostream& out)
    : out(out)
{
    // A closed pipe is the listener's way of saying stop: it must come back
    // as a failed write rather than end the program before it cleans up.
    std::signal(SIGPIPE, SIG_IGN);
}

bool ExportProgressLines::report(int64_t done, int64_t total)
{
    out << "progress " << done << ' ' << total << std::endl;
    return bool(out);
}
