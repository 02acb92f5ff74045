"""Runs the benchmarks of the library and compares each with its baseline, or with the same benchmark
at a quarter of the size."""

import json
import os
import subprocess

# The ways to calculate a CRC-32, with baseline and goal. A CPU supports the tables and some of the
# others.
WAYS = [("512-bit folding", "zlib", 3.0), ("128-bit folding", "libdeflate", 0.95),
        ("instructions", "zlib", 1.0), ("tables", "zlib", 1.0)]

# Program, label, benchmark, the baseline's benchmark and label, and the goal for the ratio: a minimum
# if the benchmark reports a rate, a maximum if it reports a time.
PAIRS = [
    ("core_crc", "CRC-32, {}", "Crc32/{}", "Crc32Zlib/{}", "zlib", 3.0),
    ("core_crc", "CRC-32, {}", "Crc32/{}", "Crc32Libdeflate/{}", "libdeflate", 0.95),
    *(("core_crc", f"CRC-32 by {way}, {{}}", f"Crc32Way/{way}/{{}}",
       f"Crc32{baseline.title()}/{{}}", baseline, goal) for way, baseline, goal in WAYS),
    ("core_text", "message with two placeholders", "MessageConnecting",
     "FormatConnectingSnprintf", "snprintf", 1.2),
    ("core_text", "format two placeholders", "FormatConnecting", "FormatConnectingSnprintf",
     "snprintf", 1.5),
    ("core_text", "format a size", "ByteSize", "ByteSizeSnprintf", "snprintf", None),
    ("core_text", "copy a long text", "Copy<String>", "Copy<std::string>", "std::string", 0.6),
    ("core_text", "append ten times", "AppendTen<String>", "AppendTen<std::string>", "std::string",
     1.5),
    ("core_text", "split", "Split", "SplitStandard", "std::string", 2.0),
    ("core_text", "replace", "Replace", "ReplaceStandard", "std::string", 1.0),
    ("core_archive", "scramble", "Scramble", "ScrambleWithOneByte", "one-byte key", None),
    ("core_archive", "write an archive", "Write", "Zlib", "zlib's CRC-32", None),
    ("core_archive", "read an archive", "Read", "Zlib", "zlib's CRC-32", None),
]

# Program, label, benchmark and number of entries. With four times as many it may take GROWTH times
# as long; quadratic time would be 16 times as long.
GROWING = [
    ("core_runtime", "collect option arguments", "OptionArguments", 500_000),
    ("core_text", "grow a list", "GrowList", 125_000),
    ("core_text", "split into many", "SplitMany", 125_000),
    ("core_text", "load lines", "LoadLines", 500_000),
    ("core_text", "load a configuration", "LoadConfFile", 500_000),
]
GROWTH = 5

# Keep freed memory. By default the C library returns that of large counts to the operating system after
# each repetition, which adds a fifth to their times.
MEMORY = {"MALLOC_MMAP_MAX_": "0", "MALLOC_TRIM_THRESHOLD_": str(8 << 30)}

SIZES = {"4 KiB": 4 << 10, "16 KiB": 16 << 10, "256 MiB": 256 << 20}


def _medians(program):
    # Interleaved repetitions, because other load and clock rates drift.
    output = subprocess.run(
        [program, "--benchmark_format=json", "--benchmark_enable_random_interleaving=true",
         "--benchmark_repetitions=15", "--benchmark_min_time=0.1",
         "--benchmark_report_aggregates_only=true"],
        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=True,
        env={**os.environ, **MEMORY}).stdout
    return {each["run_name"]: each for each in json.loads(output)["benchmarks"]
            if each["aggregate_name"] == "median"}


def measure(programs, table):
    results = {name: _medians(f"{programs}/{name}_bench")
               for name in dict.fromkeys(row[0] for row in PAIRS + GROWING)}
    for program, path, name, reference, baseline, goal in PAIRS:
        for text, size in SIZES.items() if "{}" in path else [("", 0)]:
            if name.startswith("Crc32Way/") and name.format(size) not in results[program]:
                continue
            measured = results[program][name.format(size)]
            other = results[program][reference.format(size)]
            if "bytes_per_second" in measured:
                table.add(path.format(text), "GB/s", [measured["bytes_per_second"] / 1e9],
                          baseline, [other["bytes_per_second"] / 1e9], goal, True)
            else:
                table.add(path, measured["time_unit"], [measured["cpu_time"]], baseline,
                          [other["cpu_time"]], goal, False)
    for program, path, name, many in GROWING:
        small, large = (results[program][f"{name}/{count}"]["cpu_time"]
                        for count in (many, 4 * many))
        table.limit(f"{path}, four times as long", "times", large / small, GROWTH)
