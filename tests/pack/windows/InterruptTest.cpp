#include <windows.h>

#include "tests/pack/packing.h"

namespace {

using support::Lines;

/// Keeps this process when the whole console is interrupted.
BOOL WINAPI stay(DWORD) {
    return TRUE;
}

class PackInterrupt : public support::PackTest {};

TEST_F(PackInterrupt, EndsWithTheSystemsStatusAndLeavesNothing) {
    folder_.Write("big", "");
    std::filesystem::resize_file(At("@big"), 0x7FFFFFFF);
    std::string manifest = "file.count = 3\n";
    for (int i = 0; i < 3; ++i) {
        manifest += "file[" + std::to_string(i) + "].origin = big\n";
    }
    folder_.Write("m.conf", manifest);
    SetConsoleCtrlHandler(&stay, TRUE);
    std::string command = At("\"" RAVELINK_PACK "\" -b @m.conf -o @a.rvl");
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    ASSERT_NE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                             &startup, &process),
              0);
    while (FilesBelow("").size() < 3 && WaitForSingleObject(process.hProcess, 5) != 0) {
    }
    // Ctrl-Break takes the same way, but Wine cannot generate it.
    EXPECT_NE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0), 0);
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60'000), 0u);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    EXPECT_EQ(status, STATUS_CONTROL_C_EXIT);
    EXPECT_EQ(FilesBelow(""), (Lines{"big", "m.conf"}));
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

}  // namespace
