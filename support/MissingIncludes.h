#pragma once

// A module whose sources include headers that don't exist, beside one that does. The benchmark times their
// loads and the tests hold a coarse bound.

#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <ostraka/symbols/TAPSymbolTable.h>

namespace texts {

// Forty sources to a module. Their paths.
inline std::vector<std::string> WriteSources(const std::string& root, int count, int missing) {
    std::string text = "#include \"Local.h\"\n";
    for (int i = 0; i < missing; ++i) text += "#include <system/missing" + std::to_string(i) + ".h>\n";
    for (int i = 0; i < 20; ++i)
        text += "int f" + std::to_string(i) + "(int a)\n{\n    int b = a + 1;\n    return b;\n}\n";
    std::vector<std::string> paths;
    for (int i = 0; i < count; ++i) {
        const std::string module = root + "/Fw/M" + std::to_string(i / 40) + ".m";
        if (i % 40 == 0) {
            std::filesystem::create_directories(module + "/src");
            std::filesystem::create_directories(module + "/LocalInterfaces");
            std::ofstream(module + "/LocalInterfaces/Local.h") << "class Local {};\n";
        }
        paths.push_back(module + "/src/f" + std::to_string(i) + ".cpp");
        std::ofstream(paths.back()) << text;
    }
    return paths;
}

// Of this process.
inline double SecondsToLoad(const std::vector<std::string>& paths) {
    const std::clock_t start = std::clock();
    {
        TAPSymbolTable table;
        for (const std::string& path : paths) table.LoadFile(path.c_str(), 1);
    }
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

} // namespace texts
