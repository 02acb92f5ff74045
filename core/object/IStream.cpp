#include "core/object/IStream.h"

namespace core {

IStream::~IStream() = default;

long long IStream::WriteTo(IStream& target) {
    char piece[16384];
    long long total = 0;
    for (;;) {
        int const got = Read(piece, static_cast<int>(sizeof piece));
        if (got < 1) {
            return got < 0 ? got : total;
        }
        for (int done = 0; done < got;) {
            int const written = target.Write(piece + done, got - done);
            if (written < 1) {
                return written < 0 ? written : -1;
            }
            done += written;
        }
        total += got;
    }
}

}  // namespace core
