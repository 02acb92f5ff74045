# shellcheck shell=bash
# What only a release is held to: the packages as users get them, and the first minutes of a newcomer.
# ./dev release-check reads this file and calls its functions.

# bare_debian ROOT: makes a system there that has nothing but what every Debian 12 has.
bare_debian() {
  need debootstrap
  say 'Making a bare Debian 12'
  debootstrap --variant=minbase bookworm "$1" >/dev/null
  # Not all that apt does, it does as root.
  chmod 755 "$1"
  # This machine's ways to its mirrors.
  cp -r /etc/apt/apt.conf.d "$1/etc/apt"
  cp /etc/resolv.conf "$1/etc"
  local folder
  for folder in proc dev; do
    mount --rbind --make-rslave "/$folder" "$1/$folder"
    at_exit umount -R "$1/$folder"
  done
}

# From a clone to a finished rehearsal, with one command.
check_newcomer() {
  say 'A newcomer'
  local root
  root=$(mktemp -d)
  at_exit rm -rf --one-file-system "$root"
  bare_debian "$root"
  git clone -q . "$root/ravelink"
  chroot "$root" /ravelink/dev demo
}

# The package is installed where there is nothing else, used, and removed without a trace.
check_debian_package() {
  need lintian
  say 'The Debian package'
  local package root folder
  package=$(echo build/packages/*.deb)
  # It has no changes of the package's own, beside those of the program.
  lintian --allow-root --suppress-tags no-changelog --fail-on error,warning "$package"

  root=$(mktemp -d)
  at_exit rm -rf --one-file-system "$root"
  bare_debian "$root"
  names_in "$root" >build/before
  cp "$package" "$root/package.deb"
  chroot "$root" apt-get install -y ./package.deb
  rm "$root/package.deb"
  # Complete, as the shells and man look for it.
  local file
  for file in man/man1/ravelink{,-pack,-device}.1.gz bash-completion/completions/ravelink{,-pack,-device} \
    zsh/vendor-completions/_ravelink doc/ravelink/{copyright,README.md,docs/errors.md,examples/packing/update.conf}; do
    [ -s "$root/usr/share/$file" ] || die "Not in the package: $file"
  done

  # The pages are made of documents that are checked against the options; nothing gets lost on the way.
  local program page option
  for program in ravelink ravelink-device ravelink-pack; do
    page=$(zcat "$root/usr/share/man/man1/$program.1.gz")
    for option in $(chroot "$root" "$program" -h | grep -oE -- '-[a-z0-9], --[a-z]+' | tr -d ,); do
      [[ $page == *"\f[B]$option\f[R]"* ]] || die "Not in the man page of $program: $option"
    done
  done

  # At the same path inside and outside.
  folder=$(mktemp -d)
  at_exit rm -rf "$folder"
  mkdir -p "$root$folder"
  mount --bind "$folder" "$root$folder"
  at_exit umount "$root$folder"
  rehearse "$folder" chroot "$root" %s

  chroot "$root" apt-get purge -y ravelink
  names_in "$root" >build/after
  diff build/before build/after || die 'The package leaves something behind'
}

# names_in ROOT: all that is there, but for the books that apt and dpkg keep of what they did, and
# our own folder.
names_in() {
  find "$1" -xdev -printf '%P\n' | sort |
    grep -vE '^(tmp|var/(log|cache|lib/apt))/|^var/lib/dpkg/(lock.*|.*-old)$'
}

# The tar.gz, unpacked anywhere: its programs, and its library in a project of somebody else.
check_tar() {
  say 'The tar.gz'
  local folder
  folder=$(mktemp -d)
  at_exit rm -rf "$folder"
  tar xzf build/packages/*.tar.gz --strip-components=1 -C "$folder"
  mkdir "$folder/rehearsal"
  rehearse "$folder/rehearsal" "$folder/bin/%s"
  cmake -D INSTALLED="$folder" -D FOLDER="$folder/consumer" -D COMPILER=g++ \
    -P tests/install/CheckConsumer.cmake
}

# The ZIP, unpacked anywhere.
check_windows_package() {
  need unzip
  say 'The ZIP for Windows'
  local folder
  folder=$(mktemp -d)
  at_exit rm -rf "$folder"
  unzip -q build/packages/*.zip -d "$folder"
  local unpacked=("$folder"/*)
  [ -s "${unpacked[0]}/docs/ravelink.html" ] || die 'No manual in the ZIP'
  start_wine
  mkdir "$folder/rehearsal"
  rehearse "$folder/rehearsal" cmake/run-wine "${unpacked[0]}/%s.exe"
}

# The dissector, on packets of real updates.
check_dissector() {
  need iproute2 python3 tshark
  say 'The dissector for Wireshark'
  tests/release/dissector.py build/release/bin
}
