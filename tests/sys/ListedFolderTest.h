#pragma once

#include "sys/file.h"
#include "tests/support/FolderTest.h"

/// A test with a fresh folder of which it sees all names.
class ListedFolderTest : public support::FolderTest {
protected:
    core::String Names() const {
        return sys::file::search(Path("*"), true, true)
            .AsString()
            .Replace(Path(""), "")
            .ReplaceNewLine(" ");
    }
};
