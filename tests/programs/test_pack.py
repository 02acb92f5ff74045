"""Tests of ravelink-pack as a program."""

import json
import os
import pty
import re
import signal
import subprocess
import zlib

import pytest

from conftest import QEMU, WINDOWS, golden, run, wait_until

FILE = "file.count = 1\nfile[0].origin = f\n"
OTHER = "file.count = 1\nfile[0].origin = "
RANGE = "version must be from 1.0 to 2.0"
IRREGULAR = ": it already exists and is not a regular file"
NO_COMMAND = "Invalid options: Give exactly one of -b, -l, -c and -x"


def bad(*messages):
    return ["Bad manifest: " + message for message in messages]


def not_extracted(*errors):
    return ["File not extracted: file" + error for error in errors]


def crc(archive):
    """The closing CRC of an archive, as the program prints it."""
    return f"0x{zlib.crc32(archive[:-16]):08X}"


def with_valid_crc(archive):
    return archive[:-12] + zlib.crc32(archive[:-16]).to_bytes(4, "little") + archive[-8:]


def golden_manifest(version, crypt):
    """The manifest of the golden sample."""
    text = golden("manifest.conf") + f"crypt = {('None', 'headers', 'Data', 'ALL')[crypt]}\n"
    text += "key = 0x90000011\n" if crypt else ""
    return text + {0x00020000: golden("owners.conf"), 0x00010000: "version = 1\n",
                   0x0001000A: "version = 0x0001000A\n"}[version]


@pytest.mark.parametrize("version", [0x00010000, 0x0001000A, 0x00020000])
def test_builds_the_golden_archives_and_extracts_their_files(pack, directory, version):
    files = {"in/0": b"twelve bytes and a few more", "in/empty": b"", "in/2": b"x" * 30000,
             "in/3": b"odd"}
    for name, data in files.items():
        directory.write(name, data)
    for crypt in range(4):
        sample = pack.golden("golden.rvl", "sample", hex(version), str(crypt))
        directory.write("m.conf", golden_manifest(version, crypt))
        assert len(pack("-b @m.conf -o @a.rvl")) == 1
        assert directory.read("a.rvl") == sample, crypt
        assert pack("-l @a.rvl -j")[0].count('"scrambled":true') == (0, 1, 3, 3)[crypt]
        assert pack("--extract=@a.rvl -d @out -f") == ["- Extracted: 4 files"]
        assert [directory.read("out/" + name) for name in (
            "opt/app/app.bin", "etc/empty", "café-\U0001F4E6", "always")] == list(files.values())
        assert len(directory.files("out")) == 4


@pytest.mark.parametrize("manifest, errors", [
    ("file.count = 2\nfile[0].origin = f", bad("file[1].origin is missing")),
    ("file.count = 3000000000", bad("file.count must be a number from 0 to 2147483647")),
    ("file.count = 0\nfile[0].name = f", bad("file[0].name is unknown")),
    (FILE + "FILE.COUNT = 1", bad("FILE.COUNT appears twice")),
    (FILE + "nonsense", bad("nonsense is not a name-value pair")),
    (FILE.encode() + b"\x1B[2J\xD8\x9C=\xFF = 1", bad("?[2j? is unknown")),
    (FILE + "targetId = a\0b", bad("line 3 contains a NUL character")),
    (FILE + "version = 2.1\nuniqueId = -1\nattribute.count = 1024\nfile[0].attributes = 8\n"
     "file[0].flags = 1 2",
     bad(RANGE, "uniqueId must be a number from 0 to 18446744073709551615",
         "attribute.count must be a number from 0 to 1023",
         "file[0].attributes must be an octal number from 0 to 37777777777",
         "file[0].flags must be a number from 0 to 4294967295")),
    (FILE + "version = 1.", bad(RANGE)),
    (FILE + "version = 0x1\nkey = 1", bad(RANGE, "key requires crypt")),
    (FILE + "crypt = Some\nkey = 1", bad("crypt must be None, Headers, Data or All")),
    (FILE + "crypt = All\nkey = 0x100000000", bad("key must be a number from 0 to 4294967295")),
    (FILE + "attribute.count = 9\nattribute[0] = =b\nattribute[1] = a=",
     bad(*(f"attribute[{i}] must be name=value" for i in (0, 2)))),
    ("file[0].origin = f\nfile[2].origin = f\nFILE[3].origin = f\nfile[07].origin = f\n"
     "attribute[1] = a=\nattribute[1023] = a=",
     bad(*(name + " is missing: numbers begin with 0 and have no gaps"
           for name in ("attribute[0]", "attribute[2]")),
         "attribute[1023] exceeds the limit of 1023 entries",
         "file[1] is missing: numbers begin with 0 and have no gaps",
         "file[07].origin is unknown")),
    (FILE + "version = 1.0\nfile[0].owner = root",
     ["Unsupported text: file[0].owner is not part of this format version"]),
    (FILE + "targetId = " + 65 * "x", ["Text too long: targetId may have up to 64 UTF-16 units"]),
    (FILE + "file[0].name = " + 260 * "x",
     ["Text too long: file[0].name may have up to 256 UTF-16 units"]),
    (FILE.encode() + b"attribute.count = 1\nattribute[0] = a=\xFF",
     ["Bad text: attribute[0] is not UTF-8"]),
    (OTHER + "none", ['File not readable: "@none": No such file or directory']),
    (OTHER + ".", ['File not readable: "@.": Is a directory']),
    ("\n".join(f"n{i} = 1" for i in range(10, 50)),
     ["Bad manifest: file[0].origin is missing",
      *(f"Bad manifest: n{i} is unknown" for i in range(10, 29)),
      "More errors: There are 21 more"]),
])
def test_rejects_manifests_and_keeps_the_old_archive(pack, directory, manifest, errors):
    directory.write("f", "data")
    directory.write("a.rvl", "old")
    directory.write("m.conf", manifest)
    assert pack.errors("-b @m.conf -o @a.rvl") == errors
    assert directory.read("a.rvl") == b"old"
    assert directory.files() == ["a.rvl", "f", "m.conf"], "no other file remains"


def test_reports_files_that_cannot_be_used(pack, directory):
    directory.write("f", "data")
    directory.write("m.conf", FILE)
    missing = "No such file or directory"
    assert pack.errors("-b @no=ne -o @a.rvl") == [f'Manifest not readable: "@no=ne": {missing}']
    assert pack.errors("-b @m.conf -o @no/a.rvl") == [
        f'Archive not writable: "@no/a.rvl": {missing}']
    assert pack.errors("-l @none") == [f'Archive not readable: "@none": {missing}']
    os.link(directory.path / "f", directory.path / "hard")
    os.symlink("m.conf", directory.path / "soft")
    for target, made_from in (("m.conf", "m.conf"), ("f", "f"), ("hard", "f"), ("soft", "m.conf")):
        assert pack.errors(f"-b @m.conf -o @{target}") == [
            f'Archive not writable: "@{target}" is the same file as its source "@{made_from}"']
    assert directory.read("f") + directory.read("m.conf") == b"data" + FILE.encode()


def test_warns_of_archives_that_cannot_be_extracted(pack, directory):
    directory.write("f", "")
    directory.write("m.conf", "".join(f"file[{i}].origin = f\nfile[{i}].destination = {path}\n"
                                      for i, path in enumerate(("a", "../\x1B", "A"))))
    assert pack("-b @m.conf -o @a.rvl")[1] == (
        '- Warning: -x will reject this archive because of 2 files: file[1], "../?": it contains ..')


@pytest.mark.parametrize("arguments, error", [
    ("-j", NO_COMMAND),
    ("-l a b -c a", "Invalid options: -l and -c cannot be combined"),
    ("-l a -l b", "Invalid number of arguments: -l a b"),
    ("-l a|b", "Invalid number of arguments: -l a b"),
    ("-b m", "Invalid options: -b requires -o"),
    ("-x a", "Invalid options: -x requires -d"),
    ("-c a -j", "Invalid options: -c does not allow -j"),
    ("-l a -f", "Invalid options: -l does not allow -f"),
    ("-z", "Invalid option: -z "),
    ("-c", "Invalid number of arguments: -c "),
    ("-x a b -d c", "Invalid number of arguments: -x a b"),
])
def test_rejects_command_lines(pack, arguments, error):
    assert pack(arguments, 2)[:3] == ["*** " + error, "", "Usage:"]
    assert pack("--help")[0] == "Usage:"


def test_packs_a_directory_in_the_order_of_bytes(pack, directory):
    files = ["Z", "a-b", "a/b/c", "a/b0", "x", "é"]
    for tree, order in (("one", files), ("two", files[::-1])):
        for name in order:
            os.chmod(directory.write(f"{tree}/{name}", name), 0o751 if name == "x" else 0o644)
        (directory.path / tree / "empty").mkdir()
        before = os.umask(0o026)
        try:
            assert pack(f"-b @{tree} -o @{tree}.rvl") == ["- Archive built: 6 files, 24.1 KB"]
        finally:
            os.umask(before)
    assert directory.read("one.rvl") == directory.read("two.rvl")
    assert WINDOWS or (directory.path / "one.rvl").stat().st_mode & 0o7777 == 0o640
    entries = [[file[member] for member in ("destination", "name", "attributes", "owner", "size")]
               for file in json.loads(pack("-l @one.rvl -j")[0])["files"]]
    assert entries == [
        ["/" + name, name.rpartition("/")[2], "0751" if name == "x" and not WINDOWS else "0644",
         "", len(name.encode())] for name in files]


@pytest.mark.skipif(WINDOWS, reason="Wine shows the target instead of a link")
def test_rejects_all_of_a_directory_that_it_cannot_pack(pack, directory):
    (directory.path / "tree/empty").mkdir(parents=True)
    assert pack.errors("-b @tree -o @a.rvl") == ['Nothing to pack: "@tree" contains no files']
    directory.write("tree/f", "data")
    (directory.path / "link").symlink_to("tree")
    for output in ("tree/a.rvl", "tree/empty/a.rvl", "link/a.rvl"):
        assert pack.errors(f"-b @tree -o @{output}") == [
            f'Archive not writable: "@{output}" is in the packed directory "@tree"']
    directory.write("long/" + "/".join(7 * [220 * "d"]), "")
    assert pack.errors("-b @long/ -o @a.rvl") == [
        f'Text too long: the destination of "@long/{"/".join(7 * [220 * "d"])}" may have up to 1536 '
        "UTF-16 units"]
    (directory.path / "tree/empty/link").symlink_to("../f")
    (directory.path / "tree/dangling").symlink_to("none")
    os.mkfifo(directory.path / "tree/pipe")
    assert pack.errors("-b @link -o @a.rvl") == [
        'File not packed: "@link/dangling" is a link',
        'File not packed: "@link/pipe" is not a regular file',
        'File not packed: "@link/empty/link" is a link']
    assert not (directory.path / "a.rvl").exists()


def test_reports_the_error_of_an_archive_and_its_offset(pack, directory):
    directory.write("a", "first")
    directory.write("b", "second")
    directory.write("m.conf", "file[0].origin = a\nfile[1].origin = b\n")
    pack("-b @m.conf -o @a.rvl")
    valid = directory.read("a.rvl")
    trailer = len(valid) - 16

    def changed(at, data):
        return valid[:at] + data + valid[at + len(data):]

    archives = (changed(4, b"x"), changed(10, b"\0"), changed(8, b"\1"),
                changed(trailer + 4, b"\xEF\xCD\xAB\0"), changed(trailer + 8, b"x"),
                with_valid_crc(changed(4120, b"\4")))
    errors = golden("archive-errors.txt").replace("of CRC", "of " + crc(valid)).splitlines()
    for archive, error in zip(archives, errors, strict=True):
        directory.write("bad.rvl", archive)
        assert pack.errors("-c @bad.rvl") == [error]
        assert pack.errors("-x @bad.rvl -d @out") == [error]
        assert pack("-l @bad.rvl", 1)[-2:] == ["*** " + error, ""]
        assert not (directory.path / "out").exists(), "a bad archive is not extracted"
    directory.write("a.rvl", valid + b"...")
    assert pack("-c @a.rvl") == [
        f"- The archive is valid: 2 files, 8.0 KB, CRC-32 {crc(valid)}",
        "- Trailing data at offset 8243: 3 bytes"]


def test_names_the_section_in_which_an_archive_ends_and_lists_what_precedes_it(pack, directory):
    archive = pack.golden("a.rvl", "sample", "0x00020000", "3")
    begin = 0
    members = {"archive", "error"}
    more = {"the key block": {"version", "crypt", "attributes", "files"}, "the unique ID": {"key"},
            "the source ID": {"uniqueId"}, "the target ID": {"sourceId"},
            "attribute[0]": {"targetId"}}
    entries = 0
    for section, size in (("the header", 16), ("the key block", 8), ("the unique ID", 8),
                          ("the source ID", 128), ("the target ID", 128), ("attribute[0]", 128),
                          ("attribute[1]", 128), ("the file count", 8),
                          *((f"the descriptor of file[{i}]", 4096) for i in range(4)),
                          ("the data of file[0]", 27), ("the data of file[2]", 30000),
                          ("the data of file[3]", 3), ("the trailer", 16)):
        end = begin + size - 1
        directory.write("a.rvl", archive[:end])
        assert pack.errors("-c @a.rvl") == [
            f"Archive truncated: It ends at offset {end}, in {section} (offset {begin}, {size} "
            "bytes)"]
        listed = json.loads(pack("-l @a.rvl -j", 1)[0])
        members |= more.get(section, set())
        assert listed.keys() == members
        assert len(listed.get("attributes", "")) + len(listed.get("files", "")) == entries
        entries += section.startswith(("attribute", "the descriptor"))
        begin += size


def test_lists_as_a_table_and_as_json(pack, directory):
    archive = pack.golden("a.rvl", "hostile")
    table = golden("list.txt").splitlines()
    assert pack("-l @a.rvl") == table
    pack.golden("empty.rvl", "files")
    assert pack("-l @empty.rvl")[-1] == "- Files: 0"
    directory.write("bad.rvl", "no archive at all")
    assert pack("-l @bad.rvl @a.rvl -j", 1) == [
        '{"archive":"@bad.rvl","error":{"title":"Not an archive","message":'
        '"No magic \\"QXRB5129\\" at offset 0"}}',
        golden("list.json").replace("CRC", crc(archive)).strip()]
    directory.write("cut.rvl", archive[:9000])
    assert pack("--list=@a.rvl @cut.rvl @bad.rvl", 1) == [
        "@a.rvl", *table, "", "@cut.rvl", *table[:7], "- Files: 2",
        *(line[1:] for line in table[8:11]),
        "*** Archive truncated: It ends at offset 9000, in the descriptor of file[2] "
        "(offset 8744, 4096 bytes)", "",
        "@bad.rvl", '*** Not an archive: No magic "QXRB5129" at offset 0', ""]


def test_copies_files_of_many_chunks(pack, directory):
    data = bytes(range(251)) * 4000
    directory.write("tree/big", data)
    assert pack("-b @tree -o @a.rvl") == ["- Archive built: 1 file, 984.5 KB"]
    assert pack("-x @a.rvl -d @out") == ["- Extracted: 1 file"]
    assert directory.read("out/big") == data


@pytest.mark.skipif(WINDOWS, reason="a Win32 console is no stream")
def test_shows_progress_on_a_terminal_only(pack, directory):
    archive = pack.golden("a.rvl", "files", "x")
    directory.write("a.rvl", archive[:32] + (1 << 40).to_bytes(8, "little") + archive[40:4120])
    os.truncate(directory.path / "a.rvl", 1 << 41)  # reading it takes minutes
    command = ["env", "TERM=xterm", *pack.command, "-c", directory.at("@a.rvl")]
    reader, terminal = pty.openpty()
    with (subprocess.Popen(command, stdout=subprocess.PIPE) as piped,
          subprocess.Popen(command, stdout=terminal) as process):
        os.close(terminal)
        shown = b""
        while not re.search(rb"\r  Checking (\[.*\]  )?0%  \d+\.\d of 2097152\.0 MiB  \d+\.\d MiB/s",
                            shown):
            shown += os.read(reader, 4096)
        process.terminate()
        assert process.wait() == -signal.SIGTERM and os.read(reader, 4096).endswith(b" \r")
        piped.terminate()
        assert piped.stdout.read().decode() == pack.banner + "\n"
    os.close(reader)


TOO_LONG = 256 * "n"
PARENT = ": a file has its directory's path"


@pytest.mark.parametrize("destinations, errors", [
    (["good", "../bad"], ['[1], "../bad": it contains ..']),
    (["good", "bad\x85\x1B[2J\u061C:"],
     ['[1], "bad??[2J?:": a name has a non-portable character']),
    (["dir/Ä", "DIR/ä"], ['[1], "DIR/ä": another file has the same path']),
    (["x", "/x"], ['[1], "/x": another file has the same path']),
    # One error per file, even below several others.
    (["x/y/z", "X/Y", "x!", "x/y", "X", "x0", "../x"],
     ['[6], "../x": it contains ..', '[0], "x/y/z"' + PARENT, '[1], "X/Y"' + PARENT,
      '[3], "x/y"' + PARENT]),
    (["x", "xÄ", "X/y"], ['[2], "X/y"' + PARENT]),
    (["good", "new/" + TOO_LONG, "good/" + TOO_LONG],
     [f'[2], "good/{TOO_LONG}"{PARENT}',
      f'[1], "new/{TOO_LONG}": a name is too long for the file system']),
    (["new/good", "there"], ['[1], "there": it already exists']),
    (["good", "there/x"], ['[1], "there/x": Not a directory']),
])
def test_extracts_nothing_if_any_path_is_rejected(pack, directory, destinations, errors):
    directory.write("there", "old")
    pack.golden("a.rvl", "files", *destinations)
    assert pack.errors("-x @a.rvl -d @@") == not_extracted(*errors)
    assert sorted(os.listdir(directory.path)) == ["a.rvl", "there"]
    assert directory.read("there") == b"old"
    assert pack("-x @a.rvl -d @none/new", 0 if "there" in destinations[1] else 1)
    assert (directory.path / "none").exists() == ("there" in destinations[1])


def test_replaces_files_only_with_force_and_never_directories(pack, directory):
    pack.golden("a.rvl", "files", "dir/file", "dir/other")
    assert pack("-x @a.rvl -d @new/top") == ["- Extracted: 2 files"]
    directory.write("new/top/dir/file", "mine")
    assert len(pack.errors("-x @a.rvl -d @new/top")) == 2
    assert directory.read("new/top/dir/file") == b"mine"
    assert pack("-x @a.rvl -d @new/top --force") == ["- Extracted: 2 files"]
    assert directory.read("new/top/dir/file") == b"dir/file"
    pack.golden("a.rvl", "files", "dir")
    assert pack.errors("-x @a.rvl -d @new/top -f") == not_extracted(
        '[0], "dir": a directory has its name')


@pytest.mark.skipif(WINDOWS, reason="Wine shows the target instead of a link")
def test_does_not_follow_or_replace_links(pack, directory):
    out = directory.path / "out"
    (out / "real").mkdir(parents=True)
    directory.write("outside", "mine")
    (out / "link").symlink_to(directory.path)
    (out / "inner").symlink_to("real")
    (out / "file").symlink_to(directory.path / "outside")
    for path in ("link/outside", "link/new", "inner/new", "link/a/b"):
        pack.golden("a.rvl", "files", "good", path)
        assert pack.errors("-x @a.rvl -d @out -f") == not_extracted(
            f'[1], "{path}": a link is in its path')
    assert directory.files() == ["a.rvl", "out/file", "out/inner", "out/link", "outside"]
    pack.golden("a.rvl", "files", "file")
    assert pack.errors("-x @a.rvl -d @out -f") == not_extracted('[0], "file"' + IRREGULAR)
    assert directory.read("outside") == b"mine"


@pytest.mark.skipif(WINDOWS, reason="no permissions in files, no pipes with names")
def test_keeps_permissions_and_does_not_replace_pipes(pack, directory):
    os.chmod(directory.write("secret", "old"), 0o640)
    os.mkfifo(directory.path / "pipe")
    pack.golden("a.rvl", "files", "secret")
    before = os.umask(0o077)
    try:
        assert pack("-x @a.rvl -d @@ -f") == ["- Extracted: 1 file"]
    finally:
        os.umask(before)
    assert directory.read("secret") == b"secret"
    assert (directory.path / "secret").stat().st_mode & 0o7777 == 0o640
    pack.golden("a.rvl", "files", "pipe")
    assert pack.errors("-x @a.rvl -d @@ -f") == not_extracted('[0], "pipe"' + IRREGULAR)


@pytest.mark.parametrize("by_terminal", [True, pytest.param(False, marks=pytest.mark.skipif(
    WINDOWS, reason="no signals"))])
def test_ends_by_the_interruption_and_leaves_nothing(pack, directory, by_terminal):
    """Wine turns Ctrl-C on the terminal into a console event, and keeps the low byte of the exit
    status."""
    directory.write("big", "")
    os.truncate(directory.path / "big", 2_000_000_000)
    directory.write("m.conf", "file.count = 9\n"
                    + "".join(f"file[{i}].origin = big\n" for i in range(9)))
    command = pack.command + ["-b", directory.at("@m.conf"), "-o", directory.at("@a.rvl")]
    if by_terminal:
        # exec: dash would stay as the parent, be interrupted too, and exit with a status of its own.
        command = ["script", "-qec", "exec " + " ".join(command), "/dev/null"]
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as process:
        wait_until(lambda: len(directory.files()) == 3 or process.poll() is not None)
        if by_terminal:
            process.stdin.write(b"\x03")
            process.stdin.flush()
            assert process.wait() == (0xC000013A % 256 if WINDOWS else 128 + signal.SIGINT)
        else:
            process.send_signal(signal.SIGTERM)
            assert process.wait() == -signal.SIGTERM
    assert directory.files() == ["big", "m.conf"]


@pytest.mark.skipif(WINDOWS, reason="no such limits")
def test_reports_exhausted_resources(pack, directory):
    directory.write("f", 100_000 * "f")
    os.chmod(directory.write("m.conf", FILE), 0o604)

    def limited(option, arguments):
        words = " ".join(pack.command) + " " + directory.at(arguments)
        result = run(f"ulimit {option}; exec {words}")
        assert result.status == 1
        return directory.hidden(result.lines[1])

    assert limited("-f 20", "-b @m.conf -o @a.rvl") == (
        '*** Archive not writable: "@a.rvl": File too large')
    pack("-b @m.conf -o @a.rvl")
    assert (directory.path / "a.rvl").stat().st_mode & 0o7777 == 0o604
    assert limited("-f 20", "-x @a.rvl -d @@ -f") == (
        '*** File not extracted: file[0], "f": File too large')
    assert directory.files() == ["a.rvl", "f", "m.conf"]
    pack.golden("many.rvl", "files", *(f"a/{i}/" + 255 * "b" for i in range(30)))
    assert run(f"ulimit -n 20; {' '.join(pack.command)}"
               + directory.at(" -x @many.rvl -d @a/out")).lines[1:] == ["- Extracted: 30 files"]
    assert run(" ".join(pack.command) + directory.at(" -l @a.rvl -j >/dev/full")).status == 1
    if "RAVELINK_SANITIZERS" not in os.environ and not QEMU:  # these exceed any limit
        directory.write("m.conf", "".join(f"name{i} = value\n" for i in range(200_000)))
        assert limited("-v 30000", "-b @m.conf -o @a.rvl") == (
            "*** Out of memory: The system has no more memory for the program")
