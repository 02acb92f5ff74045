#include "pack/PackApplication.h"

#include "core/console/Console.h"
#include "core/console/lines.h"
#include "pack/Listing.h"
#include "pack/Manifest.h"
#include "pack/PackProgress.h"
#include "pack/Unpacker.h"
#include "pack/faults.h"
#include "pack/usage.h"
#include "pack/verdict.h"
#include "sys/AtomicFile.h"
#include "sys/file.h"
#include "sys/openRegular.h"

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

int const doneColor = 10;

}  // namespace

/// An operation, its required option and its optional one.
struct PackApplication::Command {
    char const* option;
    char const* needs;
    char const* takes;
    void (PackApplication::*work)();
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
        errors.push_back(
            core::fault("Nothing to do", "Please provide one of the options -b, -l, -c and -x"));
        return;
    }
    for (char const* const option : {"o", "d", "j", "f"}) {
        bool const needed = String(command_->needs) == option;
        bool const allowed = needed || String(command_->takes) == option;
        if (FindOption(option) ? !allowed : needed) {
            errors.push_back(needed ? core::fault("Option missing", "Option -%1 needs -%2",
                                                  command_->option, option)
                                    : core::fault("Option without use", "Option -%1 takes no -%2",
                                                  command_->option, option));
        }
    }
    printsJson_ = errors.empty() && FindOption("j");
}

bool PackApplication::Init() {
    try {
        (this->*command_->work)();
    } catch (std::exception const& exception) {
        errors_ = {program::errorFromException(exception)};
    }
    // An interrupted program ends by its signal, without an error.
    if (!errors_.empty() && !IsTerminationRequested()) {
        RaiseStatus(ExitStatus::failed);
        ShowErrors();
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
    if (RefuseSourceAsTarget(builder, manifest, path)) {
        return;
    }
    sys::AtomicFile target;
    int result = target.Create(path);
    if (result != 0) {
        errors_.push_back(fileFault("Archive not writable", path, result));
        return;
    }
    PackProgress progress("Packed");
    result = builder.Write(target, &progress);
    if (result != 0) {
        errors_.push_back(buildFault(builder, path, result));
        return;
    }
    long long const size = target.Tell();
    if (size < 0) {
        errors_.push_back(fileFault("Archive not writable", path, static_cast<int>(size)));
        return;
    }
    // New files are owner-only; use the manifest's permissions.
    core::FileStream recipe;
    if (recipe.Open(manifest, sys::platform::openRead) == 0) {
        target.CopyPermissionsFrom(recipe);
    }
    result = target.Commit(sys::AtomicFile::Existing::replace, sys::AtomicFile::Durable::yes);
    if (result != 0) {
        errors_.push_back(fileFault("Archive not writable", path, result));
        return;
    }
    printReport(message("- Archive made: %1, %2", fileCount(builder.FileCount()),
                        sizeInColor(size, doneColor)));
}

bool PackApplication::RefuseSourceAsTarget(StreamSequencerBuilder const& builder,
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
            errors_.push_back(core::fault(
                "Archive not writable", "\"%1\" is the same file as \"%2\", which it is made from",
                path, source));
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
        errors_.push_back(fileFault("Archive not readable", Value("c"), static_cast<int>(size)));
        return;
    }
    printReport(message("- The archive is sound: %1, %2, CRC-32 %3", fileCount(reader.FileCount()),
                        sizeInColor(reader.GetReadPosition().end, doneColor),
                        core::hex(reader.GetCRC(), 8)));
    long long const behind = size - reader.GetReadPosition().end;
    if (behind > 0) {
        printLine(
            message("- Behind its end at offset %1 are %2 bytes that are no part "
                    "of it",
                    reader.GetReadPosition().end, behind));
    }
}

void PackApplication::Extract() {
    PackProgress checking("Checked");
    StreamSequencerReader reader;
    if (!ReadArchive(reader, checking)) {
        return;
    }
    PackProgress progress("Unpacked");
    if (Unpacker(reader, errors_).Unpack(Value("d"), FindOption("f"), progress)) {
        printReport(message("- Unpacked: %1", fileCount(reader.FileCount())));
    }
}

bool PackApplication::ReadArchive(StreamSequencerReader& reader, core::ICopyCallback& progress) {
    String const path = Value(command_->option);
    int result = sys::openRegular(archive_, path);
    if (result != 0) {
        errors_.push_back(fileFault("Archive not readable", path, result));
        return false;
    }
    reader.SetStream(&archive_);
    reader.SetProgress(&progress);
    result = FindOption("c") ? reader.Check() : reader.Read();
    auto const fault = reader.GetReadError() != 0
                           ? fileFault("Archive not readable", path, reader.GetReadError())
                           : verdict(reader, result);
    if (fault) {
        errors_.push_back(*fault);
    }
    return !fault;
}

void PackApplication::ShowErrors() const {
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
