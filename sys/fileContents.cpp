#include <cerrno>
#include <climits>
#include <string_view>

#include "core/stream/FileStream.h"
#include "core/stream/MemoryStream.h"
#include "core/text/TextBuilder.h"
#include "sys/file.h"

namespace sys::file {

namespace {

int const chunkSize = 4096;
int const lineGrowth = 16;

/// Replaces the list by the file's content, with one of the list's own functions.
int load(core::StringArray& list, core::String const& path,
         bool (core::StringArray::*loadFrom)(core::IStream*)) {
    core::MemoryStream memory;
    int const result = readRegularFile(memory, path);
    if (result == 0) {
        (list.*loadFrom)(&memory);
    }
    return result;
}

/// Opens path for writing, with further bits in mode, and writes size bytes.
int writeInto(core::String const& path, unsigned mode, void const* data, int size) {
    core::FileStream file;
    // Truncate after writing, not before: a concurrent reader never finds the file empty, and text
    // of the same length costs the file system almost nothing.
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
    // Some file systems report a full disk only on close.
    int const closed = file.Close();
    return result != 0 ? result : closed;
}

/// Stores the first line that is not blank, trimmed. Returns false if there is none.
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

int openRegularFile(core::FileStream& file, core::String const& path) {
    int const opened = file.Open(path, platform::openRead);
    if (opened != 0) {
        return opened;
    }
    platform::FileStatus status;
    int const result = file.Stat(status);
    if (result != 0) {
        return result;
    }
    return status.type == platform::FileType::regular ? 0 : -ENOTSUP;
}

int readRegularFile(core::MemoryStream& memory, core::String const& path) {
    core::FileStream file;
    int const opened = openRegularFile(file, path);
    if (opened != 0) {
        return opened;
    }
    if (file.Size() > INT_MAX) {
        return -EFBIG;
    }
    long long const copied = file.CopyTo(memory);
    if (copied < 0) {
        return static_cast<int>(copied);
    }
    bool const hasMark = memory.View().starts_with("\xEF\xBB\xBF");
    return memory.Seek(hasMark ? 3 : 0) < 0 ? -EIO : 0;
}

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
    if (openRegularFile(file, path) != 0) {
        return "";
    }
    core::TextBuilder text;
    char chunk[chunkSize];
    while (text.View().size() < static_cast<std::size_t>(core::String::MaxLength)) {
        int const got = file.Read(chunk, chunkSize);
        if (got < 0) {
            return "";
        }
        std::string_view const bytes(chunk, static_cast<std::size_t>(got));
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
