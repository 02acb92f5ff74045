#include "pack/PackApplication.h"

#include "core/console/Console.h"
#include "core/console/lines.h"
#include "pack/Extractor.h"
#include "pack/Listing.h"
#include "pack/Manifest.h"
#include "pack/PackProgress.h"
#include "pack/errorText.h"
#include "program/usage.h"
#include "sys/AtomicFile.h"
#include "sys/file.h"

namespace pack {

using core::Fault;
using core::message;
using core::printLine;
using core::printReport;
using core::StreamSequencerBuilder;
using core::StreamSequencerReader;
using core::String;
using program::ExitStatus;

namespace {

constexpr auto doneColor = core::Console::Color::brightGreen;

char const optionGrammar[] =
    "h|help=0>b|build=1>o|output=1>l|list=1>j|json=0>c|check=1>x|extract=1>d|directory=1>f|force=0";

void showUsage() {
    using namespace program::usage;
    core::String const program = "\t" + literal("ravelink-pack");
    print({
        {heading("Usage:")},
        {program + " -b manifest -o archive"},
        {program + " -l archive" + optional(" [-j]")},
        {program + " -c archive"},
        {program + " -x archive -d directory" + optional(" [-f]")},
        {heading("where:")},
        {"-b, --build", "Build an archive from a manifest"},
        {"-o, --output", "File name of the archive"},
        {"-l, --list", "List the content of an archive"},
        {"-j, --json", "Print only one line of JSON"},
        {"-c, --check", "Check a whole archive"},
        {"-x, --extract", "Extract an archive if it is valid"},
        {"-d, --directory", "Directory to extract into"},
        {"-f, --force", "Replace existing files"},
        {"-h, --help", "Show this screen"},
    });
}

}  // namespace

struct PackApplication::Command {
    char const* option;
    char const* required;  ///< another option; empty: none
    char const* optional;  ///< another option; empty: none
    void (PackApplication::*run)();
};

PackApplication::Command const PackApplication::commands[] = {
    {"b", "o", "", &PackApplication::Build},
    {"l", "", "j", &PackApplication::List},
    {"c", "", "", &PackApplication::Check},
    {"x", "d", "f", &PackApplication::Extract},
};

PackApplication::PackApplication()
    : Program({"ravelink-pack", "Update Archives\n", optionGrammar, showUsage,
               program::Interruption::terminateAndEndProcess}) {}

void PackApplication::CheckOptions(std::vector<Fault>& errors) {
    int given = 0;
    for (Command const& command : commands) {
        if (FindOption(command.option)) {
            command_ = &command;
            ++given;
        }
    }
    if (given != 1) {
        errors.push_back(core::fault("Invalid options", "Give exactly one of -b, -l, -c and -x"));
        return;
    }
    for (char const* const option : {"o", "d", "j", "f"}) {
        bool const required = String(command_->required) == option;
        bool const allowed = required || String(command_->optional) == option;
        if (required && !FindOption(option)) {
            errors.push_back(
                core::fault("Invalid options", "-%1 requires -%2", command_->option, option));
        } else if (!allowed && FindOption(option)) {
            errors.push_back(
                core::fault("Invalid options", "-%1 does not allow -%2", command_->option, option));
        }
    }
    printsJson_ = errors.empty() && FindOption("j");
}

bool PackApplication::Init() {
    try {
        (this->*command_->run)();
    } catch (std::exception const& exception) {
        errors_ = {program::errorFromException(exception)};
    }
    // An interrupted program ends by its signal, not with an error.
    if (!errors_.empty() && !IsTerminationRequested()) {
        RaiseStatus(ExitStatus::failed);
        PrintErrors();
    }
    RequestTermination(normalRequest);
    return true;
}

void PackApplication::Build() {
    String const manifest = Value("b");
    StreamSequencerBuilder builder;
    if (Manifest(errors_).Load(manifest, builder)) {
        WriteArchive(builder, manifest);
    }
}

void PackApplication::WriteArchive(StreamSequencerBuilder& builder, String const& manifest) {
    String const path = Value("o");
    if (RejectSourceAsTarget(builder, manifest, path)) {
        return;
    }
    sys::AtomicFile target;
    int result = target.Create(path);
    if (result != 0) {
        errors_.push_back(fileError("Archive not writable", path, result));
        return;
    }
    PackProgress progress("Packed");
    result = builder.Write(target, &progress);
    if (result != 0) {
        errors_.push_back(buildError(builder, path, result));
        return;
    }
    long long const size = target.Tell();
    if (size < 0) {
        errors_.push_back(fileError("Archive not writable", path, static_cast<int>(size)));
        return;
    }
    // New files are owner-only; use the manifest's permissions.
    core::FileStream source;
    if (source.Open(manifest, sys::platform::openRead) == 0) {
        target.CopyPermissionsFrom(source);
    }
    result = target.Commit(sys::AtomicFile::Existing::replace, sys::AtomicFile::Durable::yes);
    if (result != 0) {
        errors_.push_back(fileError("Archive not writable", path, result));
        return;
    }
    printReport(message("- Archive built: %1, %2", fileCount(builder.FileCount()),
                        sizeInColor(size, doneColor)));
}

bool PackApplication::RejectSourceAsTarget(StreamSequencerBuilder const& builder,
                                           String const& manifest, String const& path) {
    sys::file::stats target;
    if (sys::file::stat(path, &target) != 0) {
        return false;
    }
    for (int i = -1; i < builder.FileCount(); ++i) {
        String const source = i < 0 ? manifest : builder.File(i).GetOriginalPath();
        sys::file::stats status;
        if (sys::file::stat(source, &status) == 0 && status.volume == target.volume &&
            status.number == target.number) {
            errors_.push_back(core::fault("Archive not writable",
                                          "\"%1\" is the same file as its source \"%2\"", path,
                                          source));
            return true;
        }
    }
    return false;
}

void PackApplication::List() {
    PackProgress progress(printsJson_ ? "" : "Read");
    StreamSequencerReader reader;
    if (ReadArchive(reader, progress)) {
        printsJson_ ? printJson(Value("l"), reader) : printTable(reader);
    }
    // Output is the only result here: a truncated list must not pass for a whole one.
    if (core::Console::hasWriteFailed()) {
        RaiseStatus(ExitStatus::failed);
    }
}

void PackApplication::Check() {
    PackProgress progress("Checked");
    StreamSequencerReader reader;
    if (!ReadArchive(reader, progress)) {
        return;
    }
    long long const size = archive_.Size();
    if (size < 0) {
        errors_.push_back(fileError("Archive not readable", Value("c"), static_cast<int>(size)));
        return;
    }
    printReport(message("- The archive is valid: %1, %2, CRC-32 %3", fileCount(reader.FileCount()),
                        sizeInColor(reader.GetReadPosition().end, doneColor),
                        core::hex(reader.GetCRC(), 8)));
    long long const end = reader.GetReadPosition().end;
    if (size > end) {
        printLine(message("- Trailing data at offset %1: %2 bytes", end, size - end));
    }
}

void PackApplication::Extract() {
    PackProgress checking("Checked");
    StreamSequencerReader reader;
    if (!ReadArchive(reader, checking)) {
        return;
    }
    PackProgress progress("Extracted");
    auto const existing =
        FindOption("f") ? Extractor::Existing::replace : Extractor::Existing::keep;
    if (Extractor(reader, errors_).Extract(Value("d"), existing, progress)) {
        printReport(message("- Extracted: %1", fileCount(reader.FileCount())));
    }
}

bool PackApplication::ReadArchive(StreamSequencerReader& reader, core::ICopyCallback& progress) {
    String const path = Value(command_->option);
    int result = sys::file::openRegularFile(archive_, path);
    if (result != 0) {
        errors_.push_back(fileError("Archive not readable", path, result));
        return false;
    }
    reader.SetStream(&archive_);
    reader.SetProgress(&progress);
    result = FindOption("c") ? reader.Check() : reader.Read();
    auto const error = reader.GetReadError() != 0
                           ? fileError("Archive not readable", path, reader.GetReadError())
                           : archiveError(reader, result);
    if (error) {
        errors_.push_back(*error);
    }
    return !error;
}

void PackApplication::PrintErrors() const {
    if (printsJson_) {
        printJsonError(Value("l"), errors_[0]);
        return;
    }
    program::printErrors(errors_);
    printLine("");
}

String PackApplication::Value(char const* option) const {
    String value;
    GetOptionValues(option, value);
    return value;
}

}  // namespace pack
