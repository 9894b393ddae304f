#!/bin/sh
# Installs what `./dev package` made, tries it and removes it: package_test.sh
# FOLDER-OF-PACKAGES. The Debian package goes into a root of its own; Wine runs
# what the zip holds.

[ "$(id -u)" -eq 0 ] || exec unshare -r sh "$0" "$@"
packages=$(realpath "$1")
folder=$(mktemp -d "${TMPDIR:-/tmp}/plaincast-package.XXXXXX") || exit 1
trap 'rm -rf "$folder"' EXIT
root=$folder/root
faults=0

fault() {
    printf '%s\n' "$*"
    faults=$((faults + 1))
}

# same WHAT EXPECTED GOT
same() {
    [ "$2" = "$3" ] || fault "$1: expected \"$2\", got \"$3\""
}

# The libraries that programs load.
libraries() {
    ldd "$@" | grep -o '/lib[^ :]* ' | sort -u
}

in_root() {
    chroot "$root" /usr/bin/env -i PATH=/usr/bin:/bin "$@"
}

install_package() {
    dpkg --root="$root" --force-depends --path-include='/usr/share/*' -i "$packages"/*.deb \
        >"$folder/log" 2>&1 || fault "installing failed: $(cat "$folder/log")"
}

settings() {
    in_root quorel_plaincast --script /tmp/settings.qcs "$@"
}

# starts PROGRAM...: a program without its script says why, in words.
starts() {
    said=$("$@" --script missing.qcs)
    same "exit code of $*" 3 $?
    case $said in
    *'#::'*) fault "$* does not find its catalogue: $said" ;;
    *missing.qcs*) ;;
    *) fault "$* does not start: $said" ;;
    esac
}

mkdir -p "$root/tmp" "$root/bin" "$root/var/tmp" "$root/var/lib/dpkg/info" \
    "$root/var/lib/dpkg/updates"
touch "$root/var/lib/dpkg/status"
dpkg-deb -x "$packages"/*.deb "$folder/plain" || exit 1
tools="/bin/sh /bin/rm /bin/rmdir /usr/bin/env"
# shellcheck disable=SC2046,SC2086 # the names are words
cp --parents -L $tools $(libraries $tools "$folder"/plain/usr/bin/*) "$root"
cat >"$root/tmp/settings.qcs" <<'END_OF_SCRIPT'
string debug word
function main
    if ( debug != "" )
        setreg ( regkey . "\\version6\\directories" ) "debug" "str" debug word
        exit
    end
    echo ( bindir . " " . configdir . " " . scriptsdir . " " . debugdir . " " . tempdir )
    service "x" "getstate" word
    echo word
end
END_OF_SCRIPT

install_package
starts in_root quorel_plaincast
before='/usr/bin\ /etc/quorel\ /var/lib/quorel/scripts\'
services="Unable to open service manager. (Error code=2)"  # without the library
same "directories" "$before /var/log/quorel\\ /var/tmp\\
$services" "$(settings)"
settings --var debug=/srv/debug
install_package
same "directories, one of them changed" "$before /srv/debug\\ /var/tmp\\
$services" "$(settings)"
examples=/usr/share/doc/plaincast/examples
in_root quorel_plaincast --silent --script $examples/tour.qcs >"$folder/tour.linux"
for page in "$root"/usr/share/man/man1/*; do
    same "warnings about ${page##*/}" "" "$(groff -mdoc -ww -z "$page" 2>&1)"
done
dpkg --root="$root" -P plaincast >"$folder/log" 2>&1 || fault "purging failed: $(cat "$folder/log")"
same "left behind" "" "$(find "$root" -path '*quorel*')"

python3 -m zipfile -e "$packages"/*.zip "$folder/zip" || exit 1
set -- "$folder"/zip/*
WINEPATH=$(printf 'Z:%s' "$1" | tr / '\\')
export WINEPATH
cd "$folder" || exit 1
starts wine quorel_plaincast.exe
wine quorel_plaincast.exe --silent --script "$WINEPATH\\examples\\tour.qcs" >"$folder/tour.windows"
diff "$folder/tour.linux" "$folder/tour.windows" || fault "the tour differs"
[ -s "$folder/tour.linux" ] || fault "the tour says nothing"
exit $((faults > 0))
