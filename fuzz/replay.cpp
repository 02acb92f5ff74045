#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

// Runs the target of a fuzzer on all files of directories, without a fuzzer. A fault aborts the
// process.
int main(int argc, char** argv) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (auto const& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            std::vector<char> const bytes(std::istreambuf_iterator<char>(file), {});
            LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()),
                                   bytes.size());
            ++count;
        }
    }
    std::printf("%d seeds\n", count);
    return count > 0 ? 0 : 1;
}
