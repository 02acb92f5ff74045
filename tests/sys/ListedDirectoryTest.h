#pragma once

#include <initializer_list>
#include <tuple>

#include "sys/dir.h"
#include "sys/file.h"
#include "tests/support/PrintText.h"
#include "tests/support/TemporaryDirectory.h"

/// A test with a new directory that can list its entries.
class ListedDirectoryTest : public support::DirectoryTest {
protected:
    core::String Found(core::String const& pattern, bool recursive, bool directories) const {
        core::StringArray const paths = sys::file::search(pattern, recursive, directories);
        return paths.AsString().Replace(Path(""), "").ReplaceNewLine(" ");
    }
    core::String Names() const { return Found(Path("*"), true, true); }
};

/// A path, its type, and the results of stat and of getFileSize: 5 for a regular file.
using Kind = std::tuple<core::String, sys::file::Type, int, long long>;

inline void expectKinds(std::initializer_list<Kind> rows) {
    for (auto const& [path, type, status, size] : rows) {
        sys::file::stats stats;
        EXPECT_EQ(sys::file::getType(path), type) << path.getCString();
        EXPECT_EQ(sys::file::stat(path, &stats), status) << path.getCString();
        EXPECT_EQ(sys::file::getFileSize(path), size) << path.getCString();
        EXPECT_EQ(sys::file::isDirectory(path), type == sys::file::Type::directory);
        EXPECT_EQ(sys::file::exists(path), size == 5) << path.getCString();
        EXPECT_EQ(sys::file::calculatesCRC32(path) != 0, size == 5)
            << "returns, even for an endless device";
    }
}

/// A path, and the results of creating it without its parents and then with them.
using Created = std::tuple<core::String, int, int>;

inline void expectCreated(std::initializer_list<Created> rows) {
    for (auto const& [path, alone, recursive] : rows) {
        EXPECT_EQ(sys::dir::create(path, false), alone) << path.getCString();
        EXPECT_EQ(sys::dir::create(path, true), recursive) << path.getCString();
        EXPECT_EQ(sys::file::isDirectory(path), recursive == 0) << path.getCString();
    }
}
