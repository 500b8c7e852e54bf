// The entry of a target built without libFuzzer: runs every file of the folders given, once.

#include "tests/fuzz/Target.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char** argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            const std::string path = entry.path().string();
            // Printed first and unbuffered, so that a finding is preceded by its file's name.
            std::fprintf(stderr, "%s\n", path.c_str());
            std::ifstream file(path, std::ios::binary);
            const std::string input{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()),
                                   input.size());
            ++count;
        }
    }
    std::printf("%d inputs\n", count);
    return count == 0 ? 1 : 0;
}
