#pragma once

#include <gtest/gtest.h>

#include "core/text/String.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

/// A test with a fresh folder, which its paths are in.
class FolderTest : public testing::Test {
protected:
    core::String Path(std::string const& name) const { return folder_.PathOf(name).c_str(); }

    TemporaryFolder folder_;
};

}  // namespace support
