#pragma once

#include <gtest/gtest.h>

#include <initializer_list>

#include "sys/dir.h"
#include "sys/file.h"

struct Kind {
    core::String path;
    sys::file::Type type;
    int status;      ///< result of stat
    long long size;  ///< result of getFileSize, 5 for a regular file
};

inline void expectKinds(std::initializer_list<Kind> rows) {
    for (auto const& [path, type, status, size] : rows) {
        sys::file::stats stats;
        EXPECT_EQ(sys::file::getType(path), type) << path.getCString();
        EXPECT_EQ(sys::file::stat(path, &stats), status) << path.getCString();
        EXPECT_EQ(sys::file::getFileSize(path), size) << path.getCString();
        EXPECT_EQ(sys::file::isDirectory(path), type == sys::file::Type::directory);
        EXPECT_EQ(sys::file::exists(path), size == 5) << path.getCString();
        EXPECT_EQ(sys::file::calculatesCRC32(path) != 0, size == 5) << "and it comes back";
    }
}

struct Created {
    core::String path;
    int alone;      ///< result of creating it without its parents
    int recursive;  ///< result of creating it after that with its parents
};

inline void expectCreated(std::initializer_list<Created> rows) {
    for (auto const& [path, alone, recursive] : rows) {
        EXPECT_EQ(sys::dir::create(path, false), alone) << path.getCString();
        EXPECT_EQ(sys::dir::create(path, true), recursive) << path.getCString();
        EXPECT_EQ(sys::file::isDirectory(path), recursive == 0) << path.getCString();
    }
}
