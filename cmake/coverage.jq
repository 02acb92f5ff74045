# Reads the output of "llvm-cov export" and reports the branches taken in the sources of the programs
# in $root: by directory, or by file if $path is a directory; if $path is a file, lists its branches
# that were not taken. A condition has two branches.

def row(name; all):
  (all | map(.summary.branches.count) | add // 0) as $count
  | (all | map(.summary.branches.covered) | add // 0) as $taken
  | [name, $count, $count - $taken,
     if $count == 0 then "-" else "\($taken * 1000 / $count | floor / 10) %" end] | @tsv;

def directory: split("/")[:-1] | join("/");

[.data[0].files[] | .name = (.filename | ltrimstr($root))
 | select(.name | test("^(core|sys|update|program|device|pack)/"))]
| if any(.name == $path) then
    .[] | select(.name == $path) | .branches[]
    | "\($path):\(.[0]):\(.[1]): "
      + if .[4] == 0 and .[5] == 0 then "never evaluated"
        elif .[4] == 0 then "never true"
        elif .[5] == 0 then "never false"
        else empty end
  else
    (["", "branches", "not taken", "taken"] | @tsv),
    ([.[] | select($path == "" or (.name | startswith($path + "/")))]
     | (group_by(if $path == "" then .name | directory else .name end)[]
        | row(if $path == "" then .[0].name | directory else .[0].name end; .)),
       row("total"; [.[] | select($path == "" or (.name | startswith($path + "/")))]))
  end
