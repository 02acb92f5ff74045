#pragma once

#include <gtest/gtest.h>

#include "core/text/String.h"
#include "tests/support/TemporaryDirectory.h"

namespace support {

/// A test with a fresh folder, which its paths are in.
class DirectoryTest : public testing::Test {
protected:
    core::String Path(std::string const& name) const { return directory_.PathOf(name).c_str(); }

    TemporaryDirectory directory_;
};

}  // namespace support
