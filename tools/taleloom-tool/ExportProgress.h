#pragma once

#include <cstdint>
#include <ostream>

// Reports "progress DONE TOTAL" lines for a program that runs an export
// and shows its progress. Once the line cannot be written, the listener
// has gone: the export is to stop.
class ExportProgressLines {
public:
    explicit ExportProgressLines(std::ostream& out);
    bool report(int64_t done, int64_t total);

private:
    std::ostream& out;
};
