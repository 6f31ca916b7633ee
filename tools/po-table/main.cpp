// taleloom-po-table: the build step that turns the French, Italian and German
// PO files into the program's compiled translation table, and the check that
// the catalogue is complete and current.
//
//   taleloom-po-table --output TABLE.cpp FR.po IT.po DE.po
//   taleloom-po-table --check TEMPLATE.pot FRESH.pot FR.po IT.po DE.po
#include "tools/po-table/TranslationTable.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

namespace {

void report(const std::vector<PoProblem>& problems, const char* kind)
{
    for (const PoProblem& problem : problems)
        std::fprintf(stderr, "%s:%d: %s: %s\n", problem.file.c_str(), int(problem.line), kind, problem.message.c_str());
}

std::vector<PoCatalogue> readAll(char** paths, int count)
{
    std::vector<PoCatalogue> catalogues;
    for (int i = 0; i < count; ++i)
        catalogues.push_back(readPo(paths[i]));
    return catalogues;
}

// Writes only when the contents change, so that nothing rebuilds for a
// comment edited in a PO file.
bool writeIfChanged(const std::string& path, const std::string& contents)
{
    std::ifstream old(path, std::ios::binary);
    std::ostringstream was;
    was << old.rdbuf();
    if (old && was.str() == contents)
        return true;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << contents;
    return bool(out);
}

int generate(const std::string& output, char** paths)
{
    std::vector<PoCatalogue> languages = readAll(paths, 3);
    bool broken = false;
    for (const PoCatalogue& language : languages) {
        report(language.problems, "error");
        broken = broken || !language.problems.empty();
    }
    if (broken)
        return 1;
    // A bad translation leaves its key in English; the check names it.
    std::vector<PoProblem> skipped;
    std::vector<TranslationRow> rows = collectRows(languages, skipped);
    report(skipped, "warning: left out");
    if (!writeIfChanged(output, writeTable(rows))) {
        std::fprintf(stderr, "taleloom-po-table: cannot write %s\n", output.c_str());
        return 1;
    }
    return 0;
}

int check(char** paths)
{
    PoCatalogue templ = readPo(paths[0]);
    PoCatalogue fresh = readPo(paths[1]);
    std::vector<PoCatalogue> languages = readAll(paths + 2, 3);
    std::vector<PoProblem> problems = checkCatalogues(templ, fresh, languages);
    report(problems, "error");
    if (!problems.empty())
        return 1;
    std::printf("catalogue ok: %zu keys, translated in %zu languages\n", templ.index.size(), languages.size());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 6 && std::strcmp(argv[1], "--output") == 0)
        return generate(argv[2], argv + 3);
    if (argc == 7 && std::strcmp(argv[1], "--check") == 0)
        return check(argv + 2);
    std::fprintf(stderr, "usage: taleloom-po-table --output TABLE.cpp FR.po IT.po DE.po\n"
                         "       taleloom-po-table --check TEMPLATE.pot FRESH.pot FR.po IT.po DE.po\n");
    return 2;
}
