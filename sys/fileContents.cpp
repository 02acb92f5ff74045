#include <cerrno>
#include <string_view>

#include "core/text/TextBuilder.h"
#include "sys/file.h"
#include "sys/openRegular.h"

namespace sys::file {

namespace {

int const pieceSize = 4096;
int const lineGrowth = 16;

/// Has the list take the file's content by one of its loading operations.
int load(core::StringArray& list, core::String const& path,
         bool (core::StringArray::*take)(core::IStream*)) {
    core::MemoryStream memory;
    int const result = readRegular(memory, path);
    if (result == 0) {
        (list.*take)(&memory);
    }
    return result;
}

/// Opens path for writing, as mode says besides, and writes all there.
int writeInto(core::String const& path, unsigned mode, void const* data, int size) {
    core::FileStream file;
    // Truncate after writing, not before: a concurrent reader never finds the file empty, and text
    // of the same length costs the file system next to nothing.
    bool const truncate = (mode & platform::openTruncate) != 0;
    mode &= ~static_cast<unsigned>(platform::openTruncate);
    int result = file.Open(path, platform::openWrite | platform::openCreate | mode);
    if (result == 0) {
        result = file.WriteAll(data, size);
    }
    if (result == 0 && truncate) {
        long long const whole = file.Size();
        bool const unknown = whole < 0 && whole != -ESPIPE;
        result = unknown ? static_cast<int>(whole) : whole > size ? file.Truncate(size) : 0;
    }
    // Some file systems say only now that there was no room.
    int const closed = file.Close();
    return result != 0 ? result : closed;
}

/// The first line that holds more than white space, trimmed; false when there is none.
bool firstLine(core::String const& path, core::String& line) {
    core::StringArray lines(lineGrowth);
    if (loadTextFile(lines, path) != 0) {
        return false;
    }
    for (int i = 0; i < lines.Count(); ++i) {
        line = lines[i].Trim();
        if (!line.IsEmpty()) {
            return true;
        }
    }
    return false;
}

}  // namespace

int loadTextFile(core::StringArray& list, core::String const& path) {
    return load(list, path, &core::StringArray::LoadFrom);
}

int saveTextFile(core::StringArray const& list, core::String const& path) {
    core::MemoryStream memory;
    if (!list.SaveTo(&memory)) {
        return -EFBIG;
    }
    core::Buffer const& content = memory.Content();
    return writeInto(path, platform::openTruncate, content.GetData(), content.GetSize());
}

int loadConfFile(core::StringArray& list, core::String const& path) {
    return load(list, path, &core::StringArray::LoadAsConfFileFrom);
}

int saveConfFile(core::StringArray const& list, core::String const& path) {
    return saveTextFile(list, path);
}

core::String getFileContents(core::String const& path) {
    core::FileStream file;
    if (openRegular(file, path) != 0) {
        return "";
    }
    core::TextBuilder text;
    char piece[pieceSize];
    while (text.View().size() < static_cast<std::size_t>(core::String::MaxLength)) {
        int const got = file.Read(piece, pieceSize);
        if (got < 0) {
            return "";
        }
        std::string_view const bytes(piece, static_cast<std::size_t>(got));
        std::string_view const characters = bytes.substr(0, bytes.find('\0'));
        text.Append(characters);
        if (got == 0 || characters.size() < bytes.size()) {
            break;
        }
    }
    return text.AsString();
}

long long getFileContentsAsInt64(core::String const& path, long long ifUnreadable,
                                 long long ifNotNumber) {
    core::String line;
    return firstLine(path, line) ? line.ToDecimal64(ifNotNumber) : ifUnreadable;
}

int getFileContentsAsInt32(core::String const& path, int ifUnreadable, int ifNotNumber) {
    core::String line;
    return firstLine(path, line) ? line.ToDecimal32(ifNotNumber) : ifUnreadable;
}

int setFileContents(core::String const& path, core::String const& text, bool truncate,
                    unsigned mode) {
    mode |= truncate ? platform::openTruncate : 0u;
    return writeInto(path, mode, text.getCString(), text.GetLength());
}

int addFileContents(core::String const& path, core::String const& text) {
    return writeInto(path, platform::openAppend, text.getCString(), text.GetLength());
}

}  // namespace sys::file
