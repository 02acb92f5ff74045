#pragma once

#include <vector>

#include "core/archive/StreamSequencerBuilder.h"
#include "core/archive/StreamSequencerReader.h"
#include "core/stream/FileStream.h"
#include "core/text/String.h"
#include "core/text/message.h"
#include "pack/errorText.h"
#include "program/Program.h"

namespace pack {

/// The program that builds, lists, checks or extracts update archives.
class PackApplication : public program::Program {
public:
    PackApplication();

protected:
    /// -l and -c accept any number of archives.
    core::String OptionGrammar(int argc, char const* const* argv) const override;
    /// Selects the command. Adds an error unless there is exactly one, with the options that it
    /// needs.
    void CheckOptions(std::vector<core::Fault>& errors) override;
    bool HasBanner() const override { return !printsJson_; }
    /// Runs the command on each archive and requests termination.
    bool Init() override;

private:
    struct Command;
    static Command const commands[];

    /// Runs the command on path_ and prints its errors. Returns false if there are any.
    bool RunCommand();
    void Build();
    void List();
    void Check();
    void Extract();

    void WriteArchive(core::StreamSequencerBuilder& builder, Source source);
    /// Prints a warning if the archive cannot be extracted.
    void WarnOfPaths(core::StreamSequencerBuilder const& builder);
    /// Adds an error and returns true if the archive at path would replace its manifest or a file
    /// that it contains, also through a link.
    bool RejectSourceAsTarget(core::StreamSequencerBuilder const& builder,
                              core::String const& path);
    /// Opens the archive and reads it, showing the progress of the verb. Adds an error and returns
    /// false if it is not valid.
    bool ReadArchive(core::StreamSequencerReader& reader, char const* verb);
    core::String Value(char const* option) const;

    std::vector<core::Fault> errors_;
    Command const* command_ = nullptr;
    core::String path_;        ///< the value of the command's option, or one of several
    bool printsJson_ = false;  ///< instead of all other output
    core::FileStream archive_;
};

}  // namespace pack
