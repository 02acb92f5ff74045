#pragma once

#include "core/text/String.h"

/// The process-ID record of a daemon. No platform of ours makes daemons of its programs: nothing is
/// ever recorded.
namespace sys::pid {

inline bool clear(core::String const&) {
    return false;
}

}  // namespace sys::pid
