#include "pack/Manifest.h"

#include <climits>
#include <cstdint>

#include "core/archive/archiveFormat.h"
#include "core/text/readNumber.h"
#include "pack/faults.h"
#include "pack/textNames.h"
#include "sys/file.h"

namespace pack {

using core::StreamDescriptor;
using core::StreamSequencerBuilder;
using core::String;

namespace {

using Mode = StreamSequencerBuilder::CryptMode;
using Text = StreamDescriptor::Text;

unsigned const usualAttributes = 0644;

/// Reads the whole text as a number without a sign: decimal, or hexadecimal behind "0x".
bool readWhole(std::string_view text, int base, unsigned long long largest,
               unsigned long long& value) {
    if (base == 0) {
        bool const prefixed = text.starts_with("0x") || text.starts_with("0X");
        base = prefixed ? 16 : 10;
        text.remove_prefix(prefixed ? 2 : 0);
    }
    core::ReadNumber const number = core::readNumber(text, base, false, largest);
    value = number.magnitude;
    return number.length == text.size() && number.length > 0 && !number.cut;
}

/// "2.0" or "0x00020000".
bool readVersion(String const& text, unsigned& version) {
    unsigned long long major = 0;
    unsigned long long minor = 0;
    if (text.StartsWithIC("0x")) {
        bool const read = readWhole(text.View(), 0, UINT32_MAX, major);
        version = static_cast<unsigned>(major);
        return read;
    }
    bool const hasMinor = text.Find('.') >= 0;
    String const whole = hasMinor ? text.LeftOf('.') : text;
    bool const read = readWhole(whole.View(), 10, UINT16_MAX, major) &&
                      (!hasMinor || readWhole(text.RightOf('.').View(), 10, UINT16_MAX, minor));
    version = static_cast<unsigned>(major << 16 | minor);
    return read;
}

bool isAbsolute(String const& path) {
    bool const drive = sys::pathStyle().hasDrives && path.GetChar(1) == ':';
    return drive || path.HasLeadingPathDelimiter();
}

}  // namespace

bool Manifest::Load(String const& path, StreamSequencerBuilder& builder) {
    int const before = errors_.Count();
    core::StringArray lines;
    int const result = sys::file::loadConfFile(lines, path);
    if (result != 0) {
        errors_.Add(fileFault("Manifest not readable", path, result));
        return false;
    }
    TakeEntries(lines);
    TakeIdentity(builder);
    TakeCrypt(builder);
    TakeAttributes(builder);
    TakeFiles(path.GetFilePath(), builder);
    for (auto const& [name, value] : entries_) {
        Wrong(name.c_str(), "means nothing here");
    }
    return errors_.Count() == before;
}

void Manifest::TakeEntries(core::StringArray const& lines) {
    for (int i = 0; i < lines.Count(); ++i) {
        String const name = lines.GetNameByIndex(i);
        if (name.IsEmpty()) {
            Wrong(lines[i], "is no pair of name and value");
        } else if (!entries_.emplace(name.LowerCase().View(), lines.GetValueByIndex(i)).second) {
            Wrong(name, "is there twice");
        }
    }
}

void Manifest::TakeIdentity(StreamSequencerBuilder& builder) {
    String text;
    if (Take("version", text)) {
        unsigned version = 0;
        if (!readVersion(text, version) || version < core::archive::oldestVersion ||
            version > core::archive::newestVersion) {
            Wrong("version", "must be from 1.0 to 2.0");
        }
        builder.SetVersion(version);
    }
    unsigned long long id = 0;
    if (TakeNumber("uniqueId", 0, UINT64_MAX, id)) {
        builder.uniqueId = id;
    }
    if (Take("sourceId", text)) {
        builder.sourceId = text;
    }
    if (Take("targetId", text)) {
        builder.targetId = text;
    }
}

void Manifest::TakeCrypt(StreamSequencerBuilder& builder) {
    String text(nameOf(Mode::None));
    Take("crypt", text);
    bool known = false;
    for (Mode const mode : allModes) {
        if (text.CompareIC(nameOf(mode)) == 0) {
            builder.SetCryptMode(mode);
            known = true;
        }
    }
    if (!known) {
        Wrong("crypt", "must be None, Headers, Data or All");
    }
    unsigned long long key = 0;
    bool const given = TakeNumber("key", 0, UINT32_MAX, key);
    if (given && builder.GetCryptMode() == Mode::None) {
        Wrong("key", "has no use without crypt");
    } else if (builder.GetCryptMode() != Mode::None) {
        auto const seed = static_cast<unsigned>(builder.uniqueId.value_or(0));
        builder.SetCryptKey(given ? static_cast<unsigned>(key)
                                  : StreamSequencerBuilder::CalculateCryptKey(seed));
    }
}

void Manifest::TakeAttributes(StreamSequencerBuilder& builder) {
    unsigned long long count = 0;
    TakeNumber("attribute.count", 0, core::archive::attributeCountMask, count);
    for (unsigned i = 0; i < count; ++i) {
        String const name = String::format("attribute[%1]").argi(1, i);
        String text;
        if (!Take(name, text) || text.Find('=') < 1) {
            Wrong(name, "must hold a name and a value");
            return;
        }
        builder.AddAttribute(text);
    }
}

void Manifest::TakeFiles(String const& folder, StreamSequencerBuilder& builder) {
    unsigned long long count = 0;
    if (entries_.count("file.count") == 0) {
        Wrong("file.count", "is missing");
        return;
    }
    TakeNumber("file.count", 0, INT_MAX, count);
    for (unsigned i = 0; i < count; ++i) {
        // A count that is too high is told once.
        if (!TakeFile(String::format("file[%1]").argi(1, i), folder, builder)) {
            return;
        }
    }
}

bool Manifest::TakeFile(String const& name, String const& folder, StreamSequencerBuilder& builder) {
    String origin;
    if (!Take(name + ".origin", origin) || origin.IsEmpty()) {
        Wrong(name + ".origin", "is missing");
        return false;
    }
    StreamDescriptor& file =
        builder.AddFile(isAbsolute(origin) ? origin : folder.AppendNewPath(origin));
    file.SetText(Text::name, origin.RightBy('/').IsEmpty() ? origin : origin.RightBy('/'));
    for (Text const which : allTexts) {
        String text;
        if (Take(name + "." + nameOf(which), text)) {
            file.SetText(which, text);
        }
    }
    unsigned long long attributes = usualAttributes;
    TakeNumber(name + ".attributes", 8, UINT32_MAX, attributes);
    file.SetAttributes(static_cast<unsigned>(attributes));
    unsigned long long flags = 0;
    TakeNumber(name + ".flags", 0, UINT32_MAX, flags);
    file.SetFlags(static_cast<unsigned>(flags));
    return true;
}

bool Manifest::Take(String const& name, String& value) {
    auto const found = entries_.find(std::string(name.LowerCase().View()));
    if (found == entries_.end()) {
        return false;
    }
    value = found->second;
    entries_.erase(found);
    return true;
}

bool Manifest::TakeNumber(String const& name, int base, unsigned long long largest,
                          unsigned long long& value) {
    String text;
    if (!Take(name, text)) {
        return false;
    }
    if (!readWhole(text.View(), base, largest, value)) {
        Wrong(name, String::format("must be %1 number from 0 to %2")
                        .argi(1, base == 8 ? "an octal" : "a")
                        .argi(2, largest, 0, base == 8 ? 8 : 10));
        value = 0;
        return false;
    }
    return true;
}

void Manifest::Wrong(String const& name, String const& what) {
    errors_.Add("Bad manifest", String::format("%2 %1").argi(1, what).argi(2, name));
}

}  // namespace pack
