// The main() of a target built without libFuzzer: runs every file of the given folders once.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            const std::string path = entry.path().string();
            // Printed first and unbuffered: a finding ends the process.
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
