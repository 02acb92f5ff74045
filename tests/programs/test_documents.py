"""The documents, compared with the sources and with the behaviour of the programs."""

import json
import re

import pytest

from conftest import SOURCE, built, golden, run, source
from test_job import COMMON, EVENTS, ended

PROGRAMS = re.search(r"^set\(programs (.*)\)$", source("CMakeLists.txt"), re.M)[1].split()
DIRECTORIES = {name: name.partition("-")[2] or "update" for name in PROGRAMS}


def blocks(text, kind):
    """Returns the lines of all blocks between "```kind" and "```"."""
    return "".join(re.findall(rf"^```{re.escape(kind)}\n(.*?)^```", text, re.M | re.S))


def dumped(dump):
    """Returns the bytes of a hex dump. A line is an offset, up to 16 bytes, and "|" with their
    characters; "*" repeats the line before it up to the next offset."""
    data = b""
    for line in dump.splitlines():
        if line == "*":
            continue
        offset, *octets = line.partition("|")[0].split()
        while len(data) < int(offset, 16):
            data += data[-16:]
        assert len(data) == int(offset, 16), line
        data += bytes.fromhex("".join(octets))
    return data


def part(text, begin, end):
    return text[text.index(begin):].partition(end)[0]


# Errors


# The ways to report an error: a pattern of the source, in which ` is a quote within a string, and the
# line printed. Other strings must be documented, too, except those that UNDOCUMENTED matches: steps,
# progress, names of programs and single words.
WAYS = (
    (r'rrors\.Add\("([^"]+)", shown', r"\1: ..."),
    (r'(?:QuitWithError|\bfault)\(\s*"([^"]+)",[^";]*"([^"]+)"', r"\1: \2"),
    (r'DeviceStatus::\w+,\s*"([^"]+)",\s*"([^"]+)"', r"\1: \2"),
    (r'file(?:Fault|Error)\("([^"]+)"', r"\1: `...`: ..."),
    (r'"((?:it (?!changed)|a |another )[^"]+)"', r"File not extracted: file[...], `...`: \1"),
    (r'(?:AddError\(step \+ ":",[^";]*|(?="%1 [a-z]+ ))"([^"]+)"', r"Bad scenario: ...: \1"),
    (r'AddError\((?!String)[^;"]*(?:"[^"]+")?,[^";]*"([^"]+)"', r"Bad CONF: ... \1"),
)
UNDOCUMENTED = re.compile(r"(- | |>  |Result: |; ).*|.*\\n|((?![A-Za-z] [A-Za-z]).)*", re.S)


def sources(program, look=r".*\.(cpp|h)"):
    """Returns the text of all sources in a program's directory whose names match."""
    files = (SOURCE / DIRECTORIES[program]).rglob("*")
    return "".join(file.read_text() for file in sorted(files) if re.fullmatch(look, file.name))


def code_of(program):
    shared = ["core/runtime/ApplicationOptions.cpp", "program/Program.cpp"]
    if program in ("ravelink-pack", "ravelink-device"):
        shared += ["sys/ConfFile.cpp", "core/text/message.cpp"]
    text = sources(program, r"(?!Listing).*\.(cpp|h)") + "".join(map(source, shared))
    text = re.sub(r"^void showUsage\(\) \{.*?^\}", "", text, flags=re.M | re.S)
    return re.sub(r"//.*|#include.*|'\"'|\"\s*\"", "", text.replace('\\"', "`"))


def as_line(text):
    return re.sub(r"%\d", "...", text).replace("`", '"')


def strict_errors():
    """Returns the error lines of the sessions of ravelink-job only."""
    causes = re.findall(r"(\w+), *///<.* strict sessions only", source("update/session/Outcome.h"))
    found = re.findall(r'\bfault\("([^"]+)", "([^"]+)"[^()]*\),\s*Cause::(\w+)', code_of("ravelink"))
    lines = {as_line(f"{title}: {text}") for title, text, cause in found if cause in causes}
    assert len(lines) == len(causes)
    return lines


def errors_of(program):
    """Returns the error lines of a program's sources, and their other strings."""
    code = code_of(program)
    conf = {"ravelink-pack": "manifest", "ravelink-device": "scenario"}.get(program, "")
    lines = set()
    for look, line in WAYS:
        lines |= {as_line(found.expand(line)).replace("CONF", conf)
                  for found in re.finditer(look, code)}
        code = re.sub(look, "", code)
    if program == "ravelink":
        lines -= strict_errors()
    elif program == "ravelink-job":
        lines |= strict_errors()
    return lines, [as_line(text) for text in re.findall(r'"([^"]*)"', code)]


def test_each_error_is_documented_once_and_nothing_else():
    document = source("docs/errors.md")
    sections = dict(re.findall(r"^## (ravelink\S*)\n(.*?)(?=^## |\Z)", document, re.M | re.S))
    for program in PROGRAMS:
        lines, texts = errors_of(program)
        assert sorted(re.findall(r"`\*{3} ([^`]*)`", sections[program])) == sorted(lines)
        for text in texts:
            assert UNDOCUMENTED.fullmatch(text) or text in document, text
    for scenario in (SOURCE / "examples/scenarios").iterdir():
        for end in re.findall(r"\*{3} (.*)", scenario.read_text()):
            assert re.sub(r"FILE|5(?= min)", "...", end) in errors_of("ravelink")[0], scenario
    # Every entry needs all of these.
    count = sections["ravelink"].count("\n`*** ")
    for label in ("Means", "Step", "Next", "Switch off"):
        assert sections["ravelink"].count(f"\n- {label}: ") == count, label


def test_causes_are_documented_once_and_nothing_else():
    causes = re.findall(r"^\| `(\w+)` \|", part(
        source("docs/errors.md"), "\n### Causes", "\n## "), re.M)
    session = part(source("update/session/Outcome.cpp"), "nameOf(Cause", "};")
    known = set(re.findall(r'"(\w+)"', session) + re.findall(
        r'"(\w+)", CauseClass', source("job/verdict.cpp")))
    assert sorted(causes) == sorted(known)
    manual = part(source("docs/ravelink-job.md"), "\n| Outcome", "\n\n")
    assert set(re.findall(r"`(\w+)`", re.sub(r"\n\|[^|]*", "", manual))) == known


# Options


def names(text, pattern):
    """Returns the first two groups of each match as "a|b", with a "=" if the third matched."""
    return {f"{found[1]}|{found[2]}" + ("=" if found.lastindex == 3 else "")
            for found in re.finditer(pattern, text)}


def offered(*words, cwd=None):
    """Returns the completions that bash offers for the last argument."""
    script = """source "$0/completions/ravelink.bash"; known=($(complete -p $1))
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) last=${!#}; ${known[2]} $1 "${last#=}"
IFS=,; echo "${COMPREPLY[*]}\""""
    return run(["bash", "-c", script, str(SOURCE), *words], cwd=cwd).lines[0]


@pytest.mark.parametrize("program", PROGRAMS)
def test_option_descriptions_agree(program):
    page = source(f"docs/{program}.md")
    grammar = re.search(r'optionGrammar\[\] =\s*"([^;]*)";', sources(program))[1]
    assert names(page, r"`-(.)`, `--([\w-]+)`( \*[A-Z]+\*|,| and)?") == names(
        grammar, r"(.)\|([\w-]+)=(?:0|(1))")
    zsh = part(source("completions/_ravelink"), program + ")", ";;")
    assert names(zsh, r"\{-(.)(?=,--[\w-]+\}|=,.+=\})=?,--([\w-]+)(=)?\}") == names(
        page, r"\n\| `-(.)`, `--([\w-]+)`( \*[A-Z]+\*)?(?:\.\.\.)? \|")
    shown = names(page, r"\n\| `-(.)`, `--([\w-]+)`")
    screen = "\n".join(run(built(DIRECTORIES[program] + "_program") + ["-h"]).lines)
    assert names(screen, r"\n\t-(.), --([\w-]+) ") == shown
    for short in re.findall("`(-.)`, `--version`", page):
        version, same = (run(built(DIRECTORIES[program] + "_program") + [option])
                         for option in (short, "--version"))
        assert version == same and len(version.lines) == 1 and version.status == 0
    all_words = offered(program, "-")
    assert names(all_words, r"-(.),--([\w-]+)") == shown
    for word in all_words.split(","):
        plain = offered(program, word, "") == all_words
        assert bool(re.search(rf"\n\|[^|]*`{word}`[^|*]*\|", page)) == plain, word


def test_names_of_files_are_completed(directory):
    (directory.path / "sub").mkdir()
    for name in ("a b.rvl", "c.conf", "d.txt"):
        directory.write(name, "")
    for words, expected in ((("ravelink", "--origin", "=", "a"), "a b.rvl"),
                            (("ravelink", "-o", "="), "sub,a b.rvl"),
                            (("ravelink", "-a", "10.0.0.7", ":"), ""),
                            (("ravelink-pack", "-c", "a b.rvl", ""), "sub,a b.rvl"),
                            (("ravelink-device", "-s", ""), "sub,c.conf"),
                            (("ravelink-device", "-d", ""), "sub")):
        assert offered(*words, cwd=directory.path) == expected


def test_the_readme_shows_the_usage_screen():
    screen = run(built("update_program") + ["-h"]).lines[1:-1]
    shown = "".join(line + "\n" for line in screen).replace("\t", "        ")
    assert f"```text\n{shown}```\n" in source("README.md")


def test_names_of_manifests_and_scenarios_are_documented():
    table = part(source("docs/ravelink-pack.md"), "\n| Name", "\n\n")
    first = "\n".join(re.findall(r"^\|[^|]+", table, re.M))
    code = source("pack/Manifest.cpp") + source("pack/textNames.h")
    assert set(re.findall(r"[`\]]\.?([a-z][\w.]*)", first)) == set(
        re.findall(r'[({+,] ?"\.?([a-z][\w.]*)["\[]', code))
    first = "\n".join(re.findall(r"^\|[^|]+", source("docs/rehearsing.md"), re.M))
    assert set(re.findall(r"`(\w+)[^`]*`", first)) == set(
        re.findall(r'[({,] ?"(\w+)"', source("device/loadScenario.cpp")))


# Formats


def test_members_of_listings_are_documented():
    tables = part(source("docs/ravelink-pack.md"), "\n## JSON", "\n## Exit status")
    rows = re.findall(r"^\| (`.*?`) \| [a-z ]+ \|", tables, re.M)
    listed = json.loads(golden("list.json"))
    assert set(re.findall(r"`(\w+)`", "".join(rows))) == {*listed, *listed["files"][0], "error"}


def test_the_example_archive_is_what_its_manifest_gives(pack, directory):
    text = source("docs/archive-format.md")
    directory.write("hello.txt", "Hello, device!\n")
    directory.write("m.conf", blocks(text, "ini"))
    pack("-b @m.conf -o @a.rvl")
    assert directory.read("a.rvl") == dumped(blocks(text, "hexdump"))
    directory.write("example.rvl", dumped(blocks(text, "hexdump")))
    assert pack("-x @example.rvl -d @out") == ["- Extracted: 1 file"]
    assert directory.read("out/opt/hello.txt") == b"Hello, device!\n"


def traffic(lines, arrow):
    """Returns the records in a device's log, received ("<") or sent (">")."""
    return [bytes.fromhex(found[1]) for line in lines
            if (found := re.fullmatch(rf" *[0-9.]+ s {arrow}((?: [0-9A-F]{{8}})+)", line))]


def test_the_examples_of_the_protocol_are_the_traffic(device, directory, ravelink):
    """Updater and device share the code of the records, and so its faults. The document is
    independent."""
    text = source("docs/protocol.md")
    update = directory.write("update.rvl", "123456789")
    served = device("-v", "-d", str(directory.path), "-m", "9")
    ravelink("-o", update, "-a", served.address)
    assert served.wait() == 0
    request, header, trailer = traffic(served.lines, "<")
    stored, = directory.path.glob("127.0.0.1-*.rvl")
    assert request + header + stored.read_bytes() + trailer == dumped(
        blocks(text, "hexdump updater"))
    assert b"".join(traffic(served.lines, ">")) == dumped(blocks(text, "hexdump device"))
    busy = device("-v", "-s", "status-06-system-busy")
    ravelink("-o", update, "-a", busy.address)
    assert busy.wait() == 1
    assert b"".join(traffic(busy.lines, ">")) == dumped(blocks(text, "hexdump refusal"))


def numbers(text, begin, end):
    """Returns the names and numbers at the start of lines, in either order, from begin to end."""
    rows = re.findall(r"^\W*(?:(\d\w*)\W+([A-Za-z]\w*)|([A-Za-z]\w*)\W+(\d\w*))",
                      part(text, begin, end), re.M)
    return {first or second: int(one or other, 0) for one, first, second, other in rows}


def test_numbers_of_the_protocol_agree():
    document = source("docs/protocol.md")
    dissector = source("examples/wireshark/ravelink.lua")
    for kind, section, table in (
            ("enum Code", "### Codes", "local code_names"),
            ("enum RestartKind", "### Restart kinds", "local restart_names"),
            ("enum class", "### Status", "local status_names")):
        expected = numbers(source("update/protocol/records.h"), kind, "};")
        assert numbers(document, section, "\n#") == expected != {}
        assert numbers(dissector, table, "\n}") == expected
    limits = {}
    for name, value in re.findall(
            r"int (\w+) = (.+);", part(source("update/session/Session.h"), "struct SessionT", "};")):
        limits[name] = eval(value.replace("'", ""), {}, limits)
    minutes = limits.pop("completionMinutes")
    assert numbers(document, "### Time limits\n", "\n#") == limits
    device = part(source("device/DeviceConnection.h"), "struct DeviceTimeouts", "};")
    assert numbers(document, "### Time limits of a device", "\n#") == {
        name: int(value.replace("'", "")) for name, value in re.findall(r"int (\w+) = (.+);", device)}
    assert limits["completion"] == minutes * 60_000


def test_json_lines_are_documented():
    """test_job compares all streams with EVENTS."""
    document = source("docs/json.md")

    def members(section):
        return [name + ":" + kind[0] + ("?" if kind.endswith(" or null") else "") for name, kind in
                re.findall(r"^\| `(\w+)` \| ([a-z ]+) \|", section, re.M)]

    assert members(part(document, "\n## Members", "\n## Events")) == COMMON.split()
    sections = re.findall(r"^### (\w+)\n(.*?)(?=^##)", document, re.M | re.S)
    assert {name: members(section) for name, section in sections} == {
        name: described.split() for name, described in EVENTS.items()}
    for kind, status in (("updated", 0), ("refused", 11)):
        ended(blocks(document, f"json {kind}").encode(), status)


# Links


def anchors(document):
    """Returns the anchors of a document's headings, as in links after "#"."""
    headings = re.findall(r"^#+ (.*)", document.read_text(), re.M)
    return {re.sub(r"[^\w -]", "", heading).replace(" ", "-").lower() for heading in headings}


def test_links_are_valid():
    checked = 0
    for document in [SOURCE / "README.md", SOURCE / "CHANGELOG.md", *(SOURCE / "docs").iterdir()]:
        for path, anchor in re.findall(r"\]\(([^):#]*)#?([^):]*)\)", document.read_text()):
            target = document.parent / path if path else document
            assert target.exists(), (document, path)
            assert not anchor or anchor in anchors(target), (document, path, anchor)
            checked += 1
    assert checked > 40
