#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A fresh folder that goes with this object.
class TestFolder {
  public:
    TestFolder() {
        char pattern[] = "/tmp/glasspane-XXXXXX"; // Where the system's own temporary files are made, too.
        if (!mkdtemp(pattern))
            std::abort();
        fPath = pattern;
    }
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(fPath, ignored);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& Path() const { return fPath; }
    std::filesystem::path operator/(const std::string& name) const { return fPath / name; }
    /// Writes a file, and makes the folders that lead to it.
    void Write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories((fPath / name).parent_path());
        std::ofstream(fPath / name, std::ios::binary) << bytes;
    }
    /// All of a file; nothing of one that isn't there.
    std::string Read(const std::string& name) const {
        std::ifstream file(fPath / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::filesystem::path fPath;
};
