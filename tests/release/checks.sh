# shellcheck shell=bash
# Checks of a release only: the packages as users get them, and the first build on a bare system.
# ./dev release-check sources this file and calls its functions.

# bare_debian: installs a minimal Debian 12 in a new directory and sets root to its path.
bare_debian() {
  need debootstrap
  say 'Installing a bare Debian 12'
  root=$(mktemp -d)
  at_exit rm -rf --one-file-system "$root"
  debootstrap --variant=minbase bookworm "$root" >/dev/null
  # apt drops root's privileges for downloads.
  chmod 755 "$root"
  # This machine's access to its mirrors.
  cp -r /etc/apt/apt.conf.d "$root/etc/apt"
  cp /etc/resolv.conf "$root/etc"
  local directory
  for directory in proc dev; do
    mount --rbind --make-rslave "/$directory" "$root/$directory"
    at_exit umount -R "$root/$directory"
  done
}

# A clone on a bare system: the demos, then the commands that docs/contributing.md gives for systems
# without ./dev.
check_first_build() {
  say 'The first build'
  local root
  bare_debian
  git clone -q . "$root/ravelink"
  chroot "$root" /ravelink/dev demo
  chroot "$root" /ravelink/dev demo fleet
  say 'The build without ./dev'
  rm -rf "$root/ravelink/build"
  echo 'APT::Get::Assume-Yes "true";' >"$root/etc/apt/apt.conf.d/assume-yes"
  documented_commands >"$root/commands"
  chroot "$root" env HOME=/root sh -exc 'cd /ravelink; . /commands'
  [ -x "$root/root/.local/bin/ravelink" ] || die 'The documented commands installed nothing'
}

# documented_commands: prints the commands of the section "Building without ./dev".
documented_commands() {
  # shellcheck disable=SC2016
  sed -n '/^## Building without/,/^## [^B]/{/^```sh$/,/^```$/{/^```/!p}}' docs/contributing.md
}

# Installs, uses and purges the package on a bare system, and checks that no file remains.
check_debian_package() {
  need lintian
  say 'The Debian package'
  local package root directory
  package=$(echo build/packages/*_amd64.deb)
  # The packages have no changelog besides the program's. Ansible replaces the interpreter of modules.
  lintian --allow-root --suppress-tags no-changelog,unusual-interpreter --fail-on error,warning \
    build/packages/*.deb

  bare_debian
  names_in "$root" >build/before
  cp "$package" "$root/package.deb"
  chroot "$root" apt-get install -y ./package.deb
  rm "$root/package.deb"
  # The files that man and the shells look for.
  local file program page option
  for file in zsh/vendor-completions/_ravelink ravelink/fleet/verdicts \
    doc/ravelink/{copyright,README.md,docs/{errors,json}.md,examples/packing/update.conf}; do
    [ -s "$root/usr/share/$file" ] || die "Not in the package: $file"
  done
  for program in $(programs); do
    [ -s "$root/usr/share/bash-completion/completions/$program" ] || die "No completion of $program"
    # Tests compare the documents with the options; the conversion to man pages must not lose any.
    page=$(zcat "$root/usr/share/man/man1/$program.1.gz")
    for option in $(chroot "$root" "$program" -h | grep -oE -- '-[a-z0-9], --[a-z-]+' | tr -d ,); do
      [[ $page == *"\f[B]$option\f[R]"* ]] || die "Not in the man page of $program: $option"
    done
  done

  # Mount the directory at the same path in the chroot.
  new_directory
  mkdir -p "$root$directory"
  mount --bind "$directory" "$root$directory"
  at_exit umount "$root$directory"
  rehearse "$directory" chroot "$root" %s
  rehearse_job "$directory" chroot "$root" %s

  chroot "$root" apt-get purge -y ravelink
  names_in "$root" >build/after
  diff build/before build/after || die 'The package leaves files after its removal'

  say 'The collection for Ansible'
  cp "$package" build/packages/ravelink-fleet-*.tar.gz "$root"
  chroot "$root" apt-get install -y --no-install-recommends "/${package##*/}" ansible-core
  rehearse_fleet "$directory" chroot "$root" %s
  # From its own archive instead of the package.
  chroot "$root" sh -c 'ansible-galaxy collection install --offline -p /collections /ravelink-fleet-*.tar.gz'
  rm -r "$root/usr/share/ansible/collections"
  roll_out "$directory" chroot "$root" env ANSIBLE_COLLECTIONS_PATH=/collections ansible-playbook
}

# names_in ROOT: lists the files of a system, except /tmp and the records of apt and dpkg.
names_in() {
  find "$1" -xdev -printf '%P\n' | sort |
    grep -vE '^(tmp|var/(log|cache|lib/apt))/|^var/lib/dpkg/(lock.*|.*-old)$'
}

# Unpacks the tar.gz, runs its programs, and builds another project with its library.
check_tar() {
  say 'The tar.gz'
  local directory
  new_directory
  tar xzf build/packages/ravelink-[0-9]*-linux-x86_64.tar.gz --strip-components=1 -C "$directory"
  mkdir "$directory/rehearsal"
  rehearse "$directory/rehearsal" "$directory/bin/%s"
  rehearse_job "$directory/rehearsal" "$directory/bin/%s"
  cmake -D INSTALLED="$directory" -D DIRECTORY="$directory/consumer" -D COMPILER=g++ \
    -P tests/install/CheckConsumer.cmake
}

# check_arm_packages ARCHITECTURE MACHINE: unpacks the Debian package and the tar.gz and runs their programs
# under QEMU. The machine is that of readelf.
check_arm_packages() {
  say "The packages for $1"
  local package directory libc program file newest
  package=$(echo build/packages/*_"$1".deb)
  [ "$(dpkg-deb -f "$package" Architecture)" = "$1" ] || die "Another architecture: $package"
  diff <(dpkg-deb -c build/packages/*_amd64.deb | sed 's,.* \./,,') \
    <(dpkg-deb -c "$package" | sed 's,.* \./,,') || die "Not the files of the package for amd64: $package"
  new_directory
  dpkg-deb -x "$package" "$directory/package"
  libc=$(dpkg-deb -f "$package" Depends | sed -n 's/^libc6 (>= \([0-9.]*\))$/\1/p')
  mkdir "$directory/tar" "$directory/rehearsal"
  tar xzf "build/packages/ravelink-"[0-9]*"-linux-${2,,}"*.tar.gz --strip-components=1 -C "$directory/tar"
  for program in $(programs); do
    for file in "$directory/package/usr/bin/$program" "$directory/tar/bin/$program"; do
      [[ $(readelf -h "$file") == *"Machine:"*" $2"$'\n'* ]] || die "Not for $2: $file"
      ! readelf -d "$file" | grep NEEDED | grep -vE '\[(libc|libm|ld-linux-.*)\.so' || die "Not in libc6: $file"
    done
    newest=$(readelf -V "$file" | grep -o 'GLIBC_[0-9.]*' | sort -uV | tail -n 1)
    dpkg --compare-versions "${newest#GLIBC_}" le "$libc" || die "Needs $newest: $file"
  done
  # shellcheck disable=SC2046
  rehearse "$directory/rehearsal" $(emulator "$1") "$directory/package/usr/bin/%s"
  # shellcheck disable=SC2046
  rehearse_job "$directory/rehearsal" $(emulator "$1") "$directory/tar/bin/%s"
}

# Unpacks the ZIP and runs its programs.
check_windows_package() {
  need unzip
  say 'The ZIP for Windows'
  local directory
  new_directory
  unzip -q build/packages/*.zip -d "$directory"
  local unpacked=("$directory"/*)
  local program
  for program in $(programs); do
    [ -s "${unpacked[0]}/docs/$program.html" ] || die "No manual of $program in the ZIP"
  done
  start_wine
  mkdir "$directory/rehearsal"
  rehearse "$directory/rehearsal" cmake/run-wine "${unpacked[0]}/%s.exe"
  rehearse_job "$directory/rehearsal" cmake/run-wine "${unpacked[0]}/%s.exe"
}

# Installs, uses and removes the programs, with a PATH that is longer than a string of the installer.
check_windows_installer() {
  say 'The installer for Windows'
  local directory key='HKLM\SYSTEM\CurrentControlSet\Control\Session Manager\Environment'
  new_directory
  start_wine "$directory/wine"
  local installed="$directory/wine/drive_c/Program Files/ravelink"
  cmake/run-wine reg add "$key" /v Path /t REG_EXPAND_SZ /f /d "$(printf 'C:\windows;%.0s' {1..150})C:\windows"
  state_of_windows >build/before
  cmake/run-wine build/packages/*-setup.exe /S
  state_of_windows >build/installed
  grep -qF ';C:\windows;C:\Program Files\ravelink' build/installed || die 'Not in PATH'
  grep -qF 'Start Menu/Programs/ravelink manual.lnk' build/installed || die 'No link to the manual'
  mkdir "$directory/rehearsal"
  rehearse "$directory/rehearsal" cmake/run-wine "$installed/%s.exe"
  cmake/run-wine "$installed/uninstall.exe" /S
  # The uninstaller continues in a copy of itself.
  timeout 60 bash -c "while [ -e ${installed@Q} ]; do sleep 0.1; done"
  state_of_windows | diff build/before - || die 'The uninstaller leaves something, or too little'
}

# state_of_windows: lists PATH, the installed programs and all files except temporary ones.
state_of_windows() {
  cmake/run-wine reg query "$key" /v Path
  cmake/run-wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall'
  find "$WINEPREFIX/drive_c" -not -path '*/Temp/*' | sort
}

# Builds the packages again, in another directory and without a cache of the compiler.
check_reproducible() {
  say 'The packages from another directory'
  local directory
  new_directory
  git clone -q . "$directory/ravelink"
  CCACHE_DISABLE=1 "$directory/ravelink/dev" package
  diff -r build/packages "$directory/ravelink/build/packages" || die 'The packages differ'
}

# Runs the dissector on captures of real updates.
check_dissector() {
  need iproute2 python3 tshark
  say 'The dissector for Wireshark'
  tests/release/dissector.py build/release/bin
}
