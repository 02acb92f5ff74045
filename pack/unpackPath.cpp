#include "pack/unpackPath.h"

#include "core/text/StringArray.h"

namespace pack {

using core::String;

namespace {

/// Whether Windows reserves the name for a device, in any directory and with any extension. Digits
/// include superscript 1, 2 and 3.
bool isDeviceName(String const& name) {
    String const stem = name.LeftOf('.').IsEmpty() ? name : name.LeftOf('.');
    String const device = stem.TrimRight().UpperCase();
    for (char const* const plain : {"CON", "PRN", "AUX", "NUL", "CLOCK$", "CONIN$", "CONOUT$"}) {
        if (device == plain) {
            return true;
        }
    }
    if (!device.StartsWith("COM") && !device.StartsWith("LPT")) {
        return false;
    }
    String const digit = device.Copy(3);
    bool const plain = digit.GetLength() == 1 && String::IsNumeric(digit.FirstChar());
    return plain || digit == "\u00B9" || digit == "\u00B2" || digit == "\u00B3";
}

/// Returns the error of one name of a path; empty if it is valid.
String faultOf(String const& name) {
    if (name == "..") {
        return "it leads upward";
    }
    if (name.LastChar() == '.' || name.LastChar() == ' ') {
        return "a name ends with a point or a blank";
    }
    for (char const c : name.View()) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F ||
            std::string_view("\\:*?\"<>|").find(c) != std::string_view::npos) {
            return "a name holds a character that not every system allows";
        }
    }
    return isDeviceName(name) ? "a name belongs to a device" : "";
}

}  // namespace

String unpackPath(core::StreamDescriptor const& file, String& why) {
    String path = file.GetDestination();
    if (path.IsEmpty() || path.LastChar() == '/') {
        path += file.GetName();
    }
    path = path.RemoveDuplicatedPathDelimiters(sys::posixPathStyle)
               .ForceNoLeadingPathDelimiter(sys::posixPathStyle);
    core::StringArray names(16);
    path.Split(names, '/');
    why = path.IsEmpty() || path.LastChar() == '/' ? "it names no file" : "";
    for (int i = 0; i < names.Count() && why.IsEmpty(); ++i) {
        why = faultOf(names[i]);
    }
    return why.IsEmpty() ? path : String();
}

}  // namespace pack
