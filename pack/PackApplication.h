#pragma once

#include <vector>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/archive/StreamSequencerReader.h"
#include "core/stream/FileStream.h"
#include "core/text/String.h"
#include "core/text/message.h"
#include "program/Program.h"

namespace pack {

/// The program that builds, lists, checks or extracts an update archive.
class PackApplication : public program::Program {
public:
    PackApplication();

protected:
    /// Selects the command. Adds an error unless there is exactly one, with the options that it
    /// needs.
    void CheckOptions(std::vector<core::Fault>& errors) override;
    bool HasBanner() const override { return !printsJson_; }
    /// Runs the command and requests termination.
    bool Init() override;

private:
    struct Command;
    static Command const commands[];

    void Build();
    void List();
    void Check();
    void Extract();

    void WriteArchive(core::StreamSequencerBuilder& builder, core::String const& manifest);
    /// Adds an error and returns true if the archive at path would replace its manifest or a file
    /// that it contains, also through a link.
    bool RejectSourceAsTarget(core::StreamSequencerBuilder const& builder,
                              core::String const& manifest, core::String const& path);
    /// Opens the archive and reads it. Adds an error and returns false if it is not valid.
    bool ReadArchive(core::StreamSequencerReader& reader, core::ICopyCallback& progress);
    void PrintErrors() const;
    core::String Value(char const* option) const;

    std::vector<core::Fault> errors_;
    Command const* command_ = nullptr;
    bool printsJson_ = false;  ///< instead of all other output
    core::FileStream archive_;
};

}  // namespace pack
