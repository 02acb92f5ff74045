#include "core/object/IStream.h"

namespace core {

IStream::~IStream() = default;

long long IStream::WriteTo(IStream& target) {
    char chunk[16384];
    long long total = 0;
    for (;;) {
        int const received = Read(chunk, static_cast<int>(sizeof chunk));
        if (received < 1) {
            return received < 0 ? received : total;
        }
        for (int done = 0; done < received;) {
            int const written = target.Write(chunk + done, received - done);
            if (written < 1) {
                return written < 0 ? written : -1;
            }
            done += written;
        }
        total += received;
    }
}

}  // namespace core
