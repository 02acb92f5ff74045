#include "pack/Manifest.h"

#include <climits>
#include <cstdint>

#include "core/archive/archiveFormat.h"
#include "core/text/parseNumber.h"
#include "pack/errorText.h"
#include "pack/textNames.h"
#include "sys/file.h"

namespace pack {

using core::StreamDescriptor;
using core::StreamSequencerBuilder;
using core::String;

namespace {

using Mode = StreamSequencerBuilder::CryptMode;
using Text = StreamDescriptor::Text;

unsigned const defaultPermissions = 0644;

/// Reads a version such as "2.0" or "0x00020000".
bool readVersion(String const& text, unsigned& version) {
    unsigned long long major = 0;
    unsigned long long minor = 0;
    if (text.StartsWithIC("0x")) {
        bool const read = core::parseWhole(text.View(), 0, UINT32_MAX, major);
        version = static_cast<unsigned>(major);
        return read;
    }
    bool const hasMinor = text.Find('.') >= 0;
    String const whole = hasMinor ? text.LeftOf('.') : text;
    bool const read =
        core::parseWhole(whole.View(), 10, UINT16_MAX, major) &&
        (!hasMinor || core::parseWhole(text.RightOf('.').View(), 10, UINT16_MAX, minor));
    version = static_cast<unsigned>(major << 16 | minor);
    return read;
}

bool isAbsolute(String const& path) {
    bool const drive = sys::pathStyle().hasDrives && path.GetChar(1) == ':';
    return drive || path.HasLeadingPathDelimiter();
}

}  // namespace

bool Manifest::Load(String const& path, StreamSequencerBuilder& builder) {
    std::size_t const before = errors_.size();
    int const result = file_.Load(path);
    if (result != 0) {
        errors_.push_back(fileError("Manifest not readable", path, result));
        return false;
    }
    ReadIdentity(builder);
    ReadCrypt(builder);
    ReadAttributes(builder);
    ReadFiles(path.GetFilePath(), builder);
    file_.RejectUnknown();
    return errors_.size() == before;
}

void Manifest::ReadIdentity(StreamSequencerBuilder& builder) {
    String text;
    if (file_.Take("version", text)) {
        unsigned version = 0;
        if (!readVersion(text, version) || version < core::archive::oldestVersion ||
            version > core::archive::newestVersion) {
            file_.AddError("version", "must be from 1.0 to 2.0");
        }
        builder.SetVersion(version);
    }
    unsigned long long id = 0;
    if (file_.TakeNumber("uniqueId", 0, UINT64_MAX, id)) {
        builder.uniqueId = id;
    }
    if (file_.Take("sourceId", text)) {
        builder.sourceId = text;
    }
    if (file_.Take("targetId", text)) {
        builder.targetId = text;
    }
}

void Manifest::ReadCrypt(StreamSequencerBuilder& builder) {
    String text(nameOf(Mode::None));
    file_.Take("crypt", text);
    bool known = false;
    for (Mode const mode : allModes) {
        if (text.CompareIC(nameOf(mode)) == 0) {
            builder.SetCryptMode(mode);
            known = true;
        }
    }
    if (!known) {
        file_.AddError("crypt", "must be None, Headers, Data or All");
    }
    unsigned long long key = 0;
    bool const given = file_.TakeNumber("key", 0, UINT32_MAX, key);
    if (known && given && builder.GetCryptMode() == Mode::None) {
        file_.AddError("key", "requires crypt");
    } else if (builder.GetCryptMode() != Mode::None) {
        auto const seed = static_cast<unsigned>(builder.uniqueId.value_or(0));
        builder.SetCryptKey(given ? static_cast<unsigned>(key)
                                  : StreamSequencerBuilder::CalculateCryptKey(seed));
    }
}

bool Manifest::ReadList(List const& list, std::function<bool(String const& name)> const& read) {
    unsigned long long count = 0;
    if (file_.Has(list.count)) {
        file_.TakeNumber(list.count, 0, list.most, count);
        for (unsigned long long i = 0; i < count; ++i) {
            // Report a count that is too high once.
            if (!read(core::message(list.entry, i))) {
                break;
            }
        }
        return true;
    }
    for (unsigned long long const number : file_.NumbersOf(String(list.entry).LeftOf('['))) {
        String const name = core::message(list.entry, number);
        if (number > count) {
            file_.AddError(core::message(list.entry, count),
                           "is missing: numbers begin with 0 and have no gaps");
        }
        if (number >= list.most) {
            file_.AddError(name, core::message("exceeds the limit of %1 entries", list.most));
        }
        read(name);
        count = number + 1;
    }
    return count > 0;
}

void Manifest::ReadAttributes(StreamSequencerBuilder& builder) {
    List const list{"attribute.count", "attribute[%1]", core::archive::attributeCountMask};
    ReadList(list, [&](String const& name) {
        String text;
        bool const given = file_.Take(name, text);
        if (text.Find('=') > 0) {
            builder.AddAttribute(text);
        } else {
            file_.AddError(name, "must be name=value");
        }
        return given;
    });
}

void Manifest::ReadFiles(String const& directory, StreamSequencerBuilder& builder) {
    bool const found = ReadList({"file.count", "file[%1]", INT_MAX}, [&](String const& name) {
        return ReadFile(name, directory, builder);
    });
    if (!found) {
        file_.AddError("file[0].origin", "is missing");
    }
}

bool Manifest::ReadFile(String const& name, String const& directory,
                        StreamSequencerBuilder& builder) {
    String origin;
    if (!file_.Take(name + ".origin", origin) || origin.IsEmpty()) {
        file_.AddError(name + ".origin", "is missing");
        return false;
    }
    StreamDescriptor& file =
        builder.AddFile(isAbsolute(origin) ? origin : directory.AppendNewPath(origin));
    file.SetText(Text::name, origin.RightBy('/').IsEmpty() ? origin : origin.RightBy('/'));
    for (Text const which : allTexts) {
        String text;
        if (file_.Take(name + "." + nameOf(which), text)) {
            file.SetText(which, text);
        }
    }
    unsigned long long attributes = defaultPermissions;
    file_.TakeNumber(name + ".attributes", 8, UINT32_MAX, attributes);
    file.SetAttributes(static_cast<unsigned>(attributes));
    unsigned long long flags = 0;
    file_.TakeNumber(name + ".flags", 0, UINT32_MAX, flags);
    file.SetFlags(static_cast<unsigned>(flags));
    return true;
}

}  // namespace pack
