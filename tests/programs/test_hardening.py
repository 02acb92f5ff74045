"""The protections of release programs against exploits of memory errors."""

import os
import re

import pytest

from conftest import BIN, run, source


@pytest.mark.parametrize("format, options, protection", [
    ("elf", "-p", r" RELRO off "),
    ("elf", "-p", r" STACK off .*\n.* flags rw-\n"),
    # Immediate binding and a position-independent executable.
    ("elf", "-p", r" FLAGS_1 +0x0*8000001\n"),
    ("pei", "-p", r"HIGH_ENTROPY_VA\s+DYNAMIC_BASE\s+NX_COMPAT"),
    ("elf|pei", "-t", r"__stack_chk_fail"),
    ("elf|pei", "-t", r"glibcxx_assert_fail"),
    ("elf", "-t", r" __mem\w+_chk\b"),
    # Large stack frames touch each page.
    ("elf64-x86-64", "-d", r"orq +\$0x0,(0x\w+)?\(%rsp\)"),
    ("elf64-(x86-64|littleaarch64)", "-d --disassemble=main", r"endbr64|paciasp|bti\s+c"),
])
def test_programs_are_protected(format, options, protection):
    for name in re.search(r"set\(programs (.*)\)", source("CMakeLists.txt"))[1].split():
        program = next(BIN / file for file in (name, name + ".exe") if (BIN / file).exists())
        shown = "\n".join(run([os.environ["RAVELINK_OBJDUMP"], *options.split(), program]).lines)
        if not re.search(f"file format ({format})", shown):
            pytest.skip("for other systems")
        assert re.search(protection, shown), name
