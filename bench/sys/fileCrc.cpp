#include <cstdio>

#include "sys/file.h"

/// fileCrc PATH: prints the CRC-32 of a file, calculated as in the updater.
int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    std::printf("%08X\n", sys::file::calculatesCRC32(argv[1]));
    return 0;
}
