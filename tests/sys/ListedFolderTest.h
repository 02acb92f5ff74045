#pragma once

#include "sys/file.h"
#include "tests/support/TemporaryDirectory.h"

/// A test with a fresh folder of which it sees all names.
class ListedFolderTest : public support::DirectoryTest {
protected:
    core::String Found(core::String const& pattern, bool subFolders, bool folders) const {
        core::StringArray const paths = sys::file::search(pattern, subFolders, folders);
        return paths.AsString().Replace(Path(""), "").ReplaceNewLine(" ");
    }
    core::String Names() const { return Found(Path("*"), true, true); }
};
