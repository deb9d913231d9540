#pragma once

// A fresh folder that is the working directory while this object lives, and is then removed with all in it.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = std::filesystem::canonical(testing::TempDir()) / "folderXXXXXX";
        path = mkdtemp(pattern.data());
        std::filesystem::current_path(path);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before);
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // An empty file, and the folders it needs.
    void Add(const std::string& file) const {
        const std::filesystem::path folder = std::filesystem::path(file).parent_path();
        if (!folder.empty()) std::filesystem::create_directories(folder);
        std::ofstream{file};
    }

    // Goes down until the working directory is too long to be handed to the system.
    void Sink() const {
        const std::string name(200, 'd');
        for (int depth = 0; depth < 25; ++depth) {
            std::filesystem::create_directory(name);
            std::filesystem::current_path(name);
        }
    }

    std::string path;

private:
    std::filesystem::path before = std::filesystem::current_path();
};
