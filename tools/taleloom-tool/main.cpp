#include "tools/taleloom-tool/TaleloomTool.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    prepareTaleloomTool();
    std::vector<std::string> arguments(argv + 1, argv + argc);
    int status = runTaleloomTool(arguments, std::cout, std::cerr);
    std::cout.flush();
    return status;
}
