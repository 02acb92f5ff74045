#include "sys/platform/Process.h"

#include <windows.h>
#include <shellapi.h>

#include "sys/platform/windows/text.h"

namespace sys::platform {

namespace {

/// The system ends the process when a handler of a closed console returns, or after some seconds.
BOOL WINAPI holdClose(DWORD event) {
    if (event == CTRL_CLOSE_EVENT) {
        Sleep(INFINITE);
    }
    return FALSE;
}

}  // namespace

void prepareProcess() {
    // No signal ends a process here, and a standard stream that is closed has no number that a file
    // could take.
}

void outliveTerminal() {
    SetConsoleCtrlHandler(&holdClose, TRUE);
}

std::vector<std::string> programArguments(int, char const* const*) {
    // main's own were converted to the system's 8-bit code page and have lost what that lacks.
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 0; i < count; ++i) {
        arguments.push_back(narrow(words[i]));
    }
    LocalFree(words);
    return arguments;
}

unsigned currentThreadId() {
    return GetCurrentThreadId();
}

void nameThread(char const* name) {
    using SetDescription = HRESULT(WINAPI*)(HANDLE, wchar_t const*);
    // Looked up at run time: systems before Windows 10 do not have it.
    auto const found = reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription"));
    if (found != nullptr && *name != '\0') {
        reinterpret_cast<SetDescription>(found)(GetCurrentThread(), wide(name).c_str());
    }
}

}  // namespace sys::platform
