#include "core/stream/seekPosition.h"

#include <cerrno>
#include <climits>

namespace core {

long long seekPosition(long long offset, sys::platform::SeekOrigin origin, long long position,
                       long long size) {
    using sys::platform::SeekOrigin;
    long long const from = origin == SeekOrigin::begin     ? 0
                           : origin == SeekOrigin::current ? position
                                                           : size;
    if (offset < -from) {
        return -EINVAL;
    }
    return offset > LLONG_MAX - from ? -EOVERFLOW : from + offset;
}

}  // namespace core
