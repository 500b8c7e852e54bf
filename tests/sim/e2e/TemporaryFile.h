#pragma once

#include "tests/support/Descriptor.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/stat.h>

/// A file with this text, or a named pipe, removed at the end of the test.
class TemporaryFile
{
public:
    enum class Kind { Fifo };

    explicit TemporaryFile(Kind /*fifo*/) : TemporaryFile("")
    {
        Require(unlink(path.c_str()) == 0 && mkfifo(path.c_str(), 0600) == 0, path);
    }
    explicit TemporaryFile(const std::string& text)
        : path(std::filesystem::temp_directory_path() / "vantrel-sim-test-XXXXXX")
    {
        const Descriptor file(mkstemp(path.data()));
        std::ofstream(path) << text;
    }
    ~TemporaryFile() { std::remove(path.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& Path() const { return path; }

private:
    std::string path;
};
