#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/text/String.h"
#include "core/text/message.h"

namespace pack {

/// A directory tree to pack.
class Tree {
public:
    /// Errors are added to errors, which must outlive this object.
    explicit Tree(std::vector<core::Fault>& errors) : errors_(errors) {}

    /// Adds every regular file below directory to the builder, sorted by the bytes of their paths,
    /// which are the same on every platform. The destination of a file is its path below the
    /// directory, after a "/"; it has its permission bits. Returns false, with an error for each,
    /// if anything is neither a file nor a directory, or not readable; also if there are no files,
    /// or, without an error, if termination of the application is requested.
    bool Load(core::String const& directory, core::StreamSequencerBuilder& builder);

    /// Whether the file at path would be in one of the directories that Load has read.
    bool Contains(core::String const& path) const;

private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>;  ///< volume and number of a file

    std::vector<core::Fault>& errors_;
    std::vector<Identity> directories_;
};

}  // namespace pack
