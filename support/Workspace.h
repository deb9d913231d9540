#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unistd.h>

// A folder with files, made from a table of relative paths and texts and removed at the end. It sets the
// environment that a symbol table needs, so declare it before the table.
class Workspace {
public:
    struct File {
        std::string_view path;
        std::string_view text;
    };

    Workspace(std::initializer_list<File> files = {}) {
        setenv("QxqxOS_VAR", "unix_a", 1);
        std::string pattern = std::filesystem::temp_directory_path() / "ostraka_XXXXXX";
        root = mkdtemp(pattern.data());
        for (const File& file : files) Write(file.path, file.text);
    }
    ~Workspace() { std::filesystem::remove_all(root); }
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    // The absolute path, for the calls of a table.
    std::string operator()(std::string_view path) const { return root + "/" + std::string(path); }

    void Write(std::string_view path, std::string_view text) const {
        const std::filesystem::path file = (*this)(path);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }
    void Remove(std::string_view path) const { std::filesystem::remove_all((*this)(path)); }

    std::string root;
};
