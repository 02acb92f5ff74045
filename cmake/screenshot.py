"""screenshot.py BIN FILE: runs an update with the programs in the directory BIN in a terminal and
draws the terminal as an SVG."""

import io
import pathlib
import re
import subprocess
import sys
import tempfile

from rich.console import Console
from rich.terminal_theme import MONOKAI
from rich.text import Text

ADDRESS = "10.0.0.7:3007"
COLUMNS = 80

# Run in a network namespace: the address is free, and no other host is reachable.
SESSION = """
set -e
ip link set lo up
ip address add 10.0.0.7/32 dev lo
"$BIN/ravelink-device" --once --check -b $ADDRESS >device.log &
until grep -sq Listening device.log; do sleep 0.1; done
tmux -S tmux.sock -f /dev/null new-session -d -x $COLUMNS -y 30 \\
  'printf "$ ravelink -o update.rvl -a %s\\n" "$ADDRESS";
   "$BIN/ravelink" -o update.rvl -a "$ADDRESS"; : >ended; sleep 60'
until [ -e ended ]; do sleep 0.1; done
tmux -S tmux.sock capture-pane -p -e
tmux -S tmux.sock kill-server
wait
"""

# The library's format without its web fonts.
FRAME = """<svg viewBox="0 0 {width} {height}" xmlns="http://www.w3.org/2000/svg" xml:space="preserve">
<style>
.{unique_id}-matrix {{ font-family: monospace; font-size: {char_height}px;
  line-height: {line_height}px; font-variant-east-asian: full-width }}
.{unique_id}-title {{ font-family: sans-serif; font-size: 18px }}
{styles}
</style>
<defs>
<clipPath id="{unique_id}-clip-terminal">
<rect x="0" y="0" width="{terminal_width}" height="{terminal_height}" />
</clipPath>
{lines}
</defs>
{chrome}
<g transform="translate({terminal_x}, {terminal_y})" clip-path="url(#{unique_id}-clip-terminal)">
{backgrounds}
<g class="{unique_id}-matrix">
{matrix}
</g>
</g>
</svg>
"""


def screen(binaries):
    """Returns the content of the terminal after an update, with colours as escape sequences."""
    examples = pathlib.Path(__file__).parent.parent / "examples" / "packing"
    with tempfile.TemporaryDirectory() as directory:
        for file in examples.iterdir():
            pathlib.Path(directory, file.name).write_bytes(file.read_bytes())
        # The same bytes each time, so that the screenshot does not change.
        pathlib.Path(directory, "firmware.bin").write_bytes(bytes(3_000_000))
        subprocess.run([binaries / "ravelink-pack", "-b", "update.conf", "-o", "update.rvl"],
                       cwd=directory, check=True, stdout=subprocess.DEVNULL)
        environment = {"BIN": str(binaries), "ADDRESS": ADDRESS, "COLUMNS": str(COLUMNS),
                       "PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8",
                       "TERM": "xterm-256color"}
        result = subprocess.run(["unshare", "--map-root-user", "--net", "sh", "-c", SESSION],
                                cwd=directory, env=environment, check=True,
                                stdout=subprocess.PIPE, text=True, timeout=60)
        return result.stdout.rstrip()


def main():
    binaries, file = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
    shown = screen(binaries)
    last = "The device is updated and it will restart itself if needed."
    if last not in re.sub(r"\x1b\[[0-9;]*m", "", shown):
        sys.exit(f"The update failed:\n{shown}")
    console = Console(record=True, width=COLUMNS, file=io.StringIO())
    console.print(Text.from_ansi(shown))
    console.save_svg(file, title="ravelink", theme=MONOKAI, code_format=FRAME,
                     unique_id="ravelink")


main()
