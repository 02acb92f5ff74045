#include "pack/PackApplication.h"

#include "core/console/Console.h"
#include "core/console/lines.h"
#include "core/text/StringArray.h"
#include "core/text/printable.h"
#include "pack/Extractor.h"
#include "pack/Listing.h"
#include "pack/Manifest.h"
#include "pack/PackProgress.h"
#include "pack/Tree.h"
#include "pack/errorText.h"
#include "pack/extractionPaths.h"
#include "program/usage.h"
#include "sys/AtomicFile.h"
#include "sys/file.h"

namespace pack {

using core::Fault;
using core::message;
using core::printLine;
using core::StreamSequencerBuilder;
using core::StreamSequencerReader;
using core::String;
using program::ExitStatus;

namespace {

constexpr auto doneColor = core::Console::Color::brightGreen;

char const optionGrammar[] =
    "h|help=0>V|version=0>b|build=1>o|output=1>l|list=1>j|json=0>c|check=1>x|extract=1>"
    "d|directory=1>f|force=0";

/// Returns how many values the command line gives the first time to an option of the grammar.
int countValues(String const& option, int argc, char const* const* argv) {
    int count = 0;
    bool found = false;
    for (int i = 1; i < argc; ++i) {
        String const word = argv[i];
        if (word.FirstChar() != '-') {
            // Like the parser, which ignores empty values before the first one.
            count += found && (count > 0 || !word.IsEmpty()) ? 1 : 0;
            continue;
        }
        if (found) {
            break;
        }
        bool const isLong = word.StartsWith("--");
        String const key = word.Copy(isLong ? 2 : 1);
        int const end = key.Find('=', 1);
        String const name = end < 0 ? key : key.Left(end);
        found = core::Application::SameOption(option, isLong ? "|" + name : name + "|");
        count = found && end > 0 && end + 1 < key.GetLength() ? 1 : 0;
    }
    return count;
}

void showUsage() {
    using namespace program::usage;
    core::String const program = "\t" + literal("ravelink-pack");
    print({
        {heading("Usage:")},
        {program + " -b manifest -o archive"},
        {program + " -b directory -o archive"},
        {program + " -l archive ..." + optional(" [-j]")},
        {program + " -c archive ..."},
        {program + " -x archive -d directory" + optional(" [-f]")},
        {heading("where:")},
        {"-b, --build", "Build an archive from a manifest or a directory"},
        {"-o, --output", "File name of the archive"},
        {"-l, --list", "List the content of archives"},
        {"-j, --json", "Print only one line of JSON for each"},
        {"-c, --check", "Check whole archives"},
        {"-x, --extract", "Extract an archive if it is valid"},
        {"-d, --directory", "Directory to extract into"},
        {"-f, --force", "Replace existing files"},
        {"-V, --version", "Print the version"},
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

String PackApplication::OptionGrammar(int argc, char const* const* argv) const {
    String grammar = optionGrammar;
    // The parser requires exact numbers, so the grammar gets that of the archives given.
    for (char const* const option : {"l|list", "c|check"}) {
        if (int const count = countValues(option, argc, argv); count > 1) {
            grammar = grammar.Replace(message("%1=1", option), message("%1=%2", option, count));
        }
    }
    return grammar;
}

void PackApplication::CheckOptions(std::vector<Fault>& errors) {
    for (Command const& command : commands) {
        if (!FindOption(command.option)) {
            continue;
        }
        if (command_ != nullptr) {
            errors.push_back(core::fault("Invalid options", "-%1 and -%2 cannot be combined",
                                         command_->option, command.option));
            return;
        }
        command_ = &command;
    }
    if (command_ == nullptr) {
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
    core::StringArray paths(16);
    Value(command_->option).Split(paths, '|');
    for (int i = 0; i < paths.Count() && !IsTerminationRequested(); ++i) {
        path_ = paths[i];
        if (paths.Count() == 1 || printsJson_) {
            RunCommand();
            continue;
        }
        printLine(program::usage::heading(core::printable(path_)));
        if (RunCommand()) {
            printLine("");
        }
    }
    RequestTermination(normalRequest);
    return true;
}

bool PackApplication::RunCommand() {
    errors_.clear();
    try {
        (this->*command_->run)();
    } catch (std::exception const& exception) {
        errors_ = {program::errorFromException(exception)};
        if (printsJson_) {
            printJson(path_, {}, &errors_[0]);
        }
    }
    if (errors_.empty()) {
        return true;
    }
    // An interrupted program ends by its signal, not with an error.
    if (!IsTerminationRequested()) {
        RaiseStatus(ExitStatus::failed);
        if (!printsJson_) {
            program::printErrors(errors_);
            printLine("");
        }
    }
    return false;
}

void PackApplication::Build() {
    StreamSequencerBuilder builder;
    sys::file::stats status;
    if (sys::file::stat(path_, &status) != 0 || status.type != sys::file::Type::directory) {
        if (Manifest(errors_).Load(path_, builder)) {
            WriteArchive(builder, Source::manifest);
        }
        return;
    }
    Tree tree(errors_);
    if (!tree.Load(path_, builder)) {
        return;
    }
    String const path = Value("o");
    if (tree.Contains(path)) {
        errors_.push_back(core::fault("Archive not writable",
                                      "\"%1\" is in the packed directory \"%2\"", path, path_));
        return;
    }
    WriteArchive(builder, Source::tree);
}

void PackApplication::WriteArchive(StreamSequencerBuilder& builder, Source source) {
    using Permissions = sys::platform::PartPermissions;
    String const path = Value("o");
    if (RejectSourceAsTarget(builder, path)) {
        return;
    }
    sys::AtomicFile target;
    int result = target.Create(
        path, source == Source::tree ? Permissions::ofTarget : Permissions::ownerOnly);
    if (result != 0) {
        errors_.push_back(fileError("Archive not writable", path, result));
        return;
    }
    {
        PackProgress progress("Packing");
        result = builder.Write(target, &progress);
    }
    if (result != 0) {
        errors_.push_back(buildError(builder, source, path, result));
        return;
    }
    long long const size = target.Tell();
    if (size < 0) {
        errors_.push_back(fileError("Archive not writable", path, static_cast<int>(size)));
        return;
    }
    core::FileStream manifest;
    if (source == Source::manifest && manifest.Open(path_, sys::platform::openRead) == 0) {
        target.CopyPermissionsFrom(manifest);
    }
    result = target.Commit(sys::AtomicFile::Existing::replace, sys::AtomicFile::Durable::yes);
    if (result != 0) {
        errors_.push_back(fileError("Archive not writable", path, result));
        return;
    }
    printLine(message("- Archive built: %1, %2", fileCount(builder.FileCount()),
                      sizeInColor(size, doneColor)));
    WarnOfPaths(builder);
}

void PackApplication::WarnOfPaths(StreamSequencerBuilder const& builder) {
    int count = 0;
    String first;
    extractionPaths(builder, [&](int index, String const& reason) {
        if (count++ == 0) {
            core::StreamDescriptor const& file = builder.File(index);
            String const& destination = file.GetDestination();
            first = message("file[%1], \"%2\": %3", index,
                            destination.IsEmpty() ? file.GetName() : destination, reason);
        }
    });
    if (count > 0) {
        printLine(core::printable(message(
            "- Warning: -x will reject this archive because of %1: %2", fileCount(count), first)));
    }
}

bool PackApplication::RejectSourceAsTarget(StreamSequencerBuilder const& builder,
                                           String const& path) {
    sys::file::stats target;
    if (sys::file::stat(path, &target) != 0) {
        return false;
    }
    for (int i = -1; i < builder.FileCount(); ++i) {
        String const source = i < 0 ? path_ : builder.File(i).GetOriginalPath();
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
    StreamSequencerReader reader;
    bool const valid = ReadArchive(reader, "Reading");
    if (IsTerminationRequested()) {
        return;
    }
    if (printsJson_) {
        printJson(path_, reader, valid ? nullptr : &errors_[0]);
    } else {
        printTable(reader);
    }
    // Output is the only result here: a truncated list must not pass for a whole one.
    if (core::Console::hasWriteFailed()) {
        RaiseStatus(ExitStatus::failed);
    }
}

void PackApplication::Check() {
    StreamSequencerReader reader;
    if (!ReadArchive(reader, "Checking")) {
        return;
    }
    long long const size = archive_.Size();
    if (size < 0) {
        errors_.push_back(fileError("Archive not readable", path_, static_cast<int>(size)));
        return;
    }
    printLine(message("- The archive is valid: %1, %2, CRC-32 %3", fileCount(reader.FileCount()),
                      sizeInColor(reader.GetReadPosition().end, doneColor),
                      core::hex(reader.GetCRC(), 8)));
    long long const end = reader.GetReadPosition().end;
    if (size > end) {
        printLine(message("- Trailing data at offset %1: %2 bytes", end, size - end));
    }
}

void PackApplication::Extract() {
    StreamSequencerReader reader;
    if (!ReadArchive(reader, "Checking")) {
        return;
    }
    auto const existing =
        FindOption("f") ? Extractor::Existing::replace : Extractor::Existing::keep;
    bool extracted = false;
    {
        PackProgress progress("Extracting");
        extracted = Extractor(reader, errors_).Extract(Value("d"), existing, progress);
    }
    if (extracted) {
        printLine(message("- Extracted: %1", fileCount(reader.FileCount())));
    }
}

bool PackApplication::ReadArchive(StreamSequencerReader& reader, char const* verb) {
    int result = sys::file::openRegularFile(archive_, path_);
    if (result != 0) {
        errors_.push_back(fileError("Archive not readable", path_, result));
        return false;
    }
    reader.SetStream(&archive_);
    {
        using Output = PackProgress::Output;
        PackProgress progress(verb, printsJson_ ? Output::none : Output::terminal);
        reader.SetProgress(&progress);
        result = FindOption("c") ? reader.Check() : reader.Read();
        reader.SetProgress(nullptr);
    }
    auto const error = reader.GetReadError() != 0
                           ? fileError("Archive not readable", path_, reader.GetReadError())
                           : archiveError(reader, result);
    if (error) {
        errors_.push_back(*error);
    }
    return !error;
}

String PackApplication::Value(char const* option) const {
    String value;
    GetOptionValues(option, value);
    return value;
}

}  // namespace pack
