"""picture.py BIN PICTURE: runs an update with the programs in the folder BIN, in a terminal, and
draws what the terminal shows as an SVG."""

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

# Run in a network of its own, where the address is free and nobody else can be reached.
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

# Of the library's frame, without the fonts that it would fetch from elsewhere.
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
    """What the terminal shows after an update, with its colours as escape sequences."""
    examples = pathlib.Path(__file__).parent.parent / "examples" / "packing"
    with tempfile.TemporaryDirectory() as folder:
        for file in examples.iterdir():
            pathlib.Path(folder, file.name).write_bytes(file.read_bytes())
        # The same bytes each time, or the picture would change.
        pathlib.Path(folder, "firmware.bin").write_bytes(bytes(3_000_000))
        subprocess.run([binaries / "ravelink-pack", "-b", "update.conf", "-o", "update.rvl"],
                       cwd=folder, check=True, stdout=subprocess.DEVNULL)
        environment = {"BIN": str(binaries), "ADDRESS": ADDRESS, "COLUMNS": str(COLUMNS),
                       "PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8",
                       "TERM": "xterm-256color"}
        ran = subprocess.run(["unshare", "--map-root-user", "--net", "sh", "-c", SESSION],
                             cwd=folder, env=environment, check=True,
                             stdout=subprocess.PIPE, text=True, timeout=60)
        return ran.stdout.rstrip()


def main():
    binaries, picture = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
    shown = screen(binaries)
    last = "The device is updated and it will restart itself if needed."
    if last not in re.sub(r"\x1b\[[0-9;]*m", "", shown):
        sys.exit(f"The update was not completed:\n{shown}")
    console = Console(record=True, width=COLUMNS, file=io.StringIO())
    console.print(Text.from_ansi(shown))
    console.save_svg(picture, title="ravelink", theme=MONOKAI, code_format=FRAME,
                     unique_id="ravelink")


main()
