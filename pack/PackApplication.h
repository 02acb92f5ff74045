#pragma once

#include <vector>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/archive/StreamSequencerReader.h"
#include "core/runtime/Application.h"
#include "core/stream/FileStream.h"
#include "core/text/String.h"
#include "core/text/message.h"

namespace pack {

/// The program that builds, lists, checks or extracts an update archive.
class PackApplication : public core::Application {
public:
    PackApplication();

    /// Prints the banner, unless the output is JSON, and then the errors and the usage screen, the
    /// usage screen alone, or the output of the command.
    void Main(int argc, char const* const* argv);

    /// 0 done, 1 failed, 2 wrong usage.
    int Result() override { return result_; }

protected:
    /// Does the whole work and requests termination.
    bool Init() override;

private:
    struct Command;
    static Command const commands[];

    Command const* Chosen();
    void Build();
    void List();
    void Check();
    void Extract();

    void WriteArchive(core::StreamSequencerBuilder& builder, core::String const& manifest);
    /// Adds an error and returns true if the archive at path would overwrite a file that it is made
    /// of, also through a link.
    bool RefuseSourceAsTarget(core::StreamSequencerBuilder const& builder,
                              core::String const& manifest, core::String const& path);
    /// Opens and reads the archive. Adds an error and returns false if it is not valid.
    bool ReadArchive(core::StreamSequencerReader& reader, core::ICopyCallback& progress);
    void ShowErrors() const;
    core::String Value(char const* option) const;

    int result_ = 0;
    std::vector<core::Fault> errors_;
    Command const* command_ = nullptr;
    core::FileStream archive_;
};

}  // namespace pack
