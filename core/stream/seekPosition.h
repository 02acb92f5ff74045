#pragma once

#include "sys/platform/Files.h"

namespace core {

/// The position that a Seek of a stream with a known position and size leads to, or the negative
/// error code for one that there is not: see Stream::Seek.
long long seekPosition(long long offset, sys::platform::SeekOrigin origin, long long position,
                       long long size);

}  // namespace core
