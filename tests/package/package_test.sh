#!/usr/bin/env bash
# package_test.sh <cpack> <build folder>
# Builds the Debian package from the built program and checks what it lays out, its desktop
# entry, its AppStream metadata and lintian's verdict. Run as root on a machine without Vorlane,
# it also installs the package for real: a throwaway member of the group vorlane writes to the
# database and starts the program; removing the package keeps the database, a reinstall uses it
# again, a purge keeps it unless the administrator answered to delete it. Exits 77 (skipped)
# when a tool it needs is missing.
set -euo pipefail
cpack=$1
build=$2

skip() {
    echo "SKIP: $*"
    exit 77
}
fail() {
    echo "FAIL: $*" >&2
    exit 1
}
# expect <what> <command...>: the command must succeed.
expect() {
    local what=$1
    shift
    "$@" || fail "$what"
}

for tool in dpkg-deb dpkg-shlibdeps lintian desktop-file-validate appstreamcli; do
    command -v "$tool" >/dev/null || skip "$tool is missing"
done

work=$(mktemp -d)
user=""
made_group=false
installed=false
cleanup() {
    if $installed; then
        echo "vorlane vorlane/purge-data boolean true" | debconf-set-selections 2>/dev/null || true
        DEBIAN_FRONTEND=noninteractive dpkg --purge vorlane >/dev/null 2>&1 || true
        rm -rf /var/lib/vorlane
    fi
    [ -z "$user" ] || userdel --remove "$user" 2>/dev/null || true
    ! $made_group || groupdel vorlane 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

"$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log"; fail "cpack could not build the package"; }
deb=$(echo "$work"/out/vorlane_*.deb)
expect "no package was built" test -f "$deb"

# --- What the package lays out ------------------------------------------------------------
root=$work/root
dpkg-deb -x "$deb" "$root"
dir=$root/usr/lib/vorlane
for program in Vorlane vorlane-reader VorlaneSetup VorlaneHelp; do
    expect "$program is not an executable of the program folder" test -x "$dir/$program"
done
expect "the help file is not beside the program" test -f "$dir/Vorlane.html"
expect "Database does not lead to /var/lib/vorlane" test "$(readlink "$dir/Database")" = /var/lib/vorlane
expect "Images does not lead to /etc/vorlane/Images" test "$(readlink "$dir/Images")" = /etc/vorlane/Images
expect "the command vorlane does not lead to the program" test "$(readlink -f "$root/usr/bin/vorlane")" = "$dir/Vorlane"
expect "the package holds data" test ! -e "$root/var"
for size in 16x16 22x22 24x24 32x32 48x48 64x64 128x128 256x256; do
    expect "no $size icon" test -f "$root/usr/share/icons/hicolor/$size/apps/vorlane.png"
done
expect "no scalable icon" test -f "$root/usr/share/icons/hicolor/scalable/apps/vorlane.svg"
expect "no manual page" test -f "$root/usr/share/man/man1/vorlane.1.gz"
desktop=$root/usr/share/applications/org.vorlane.Vorlane.desktop
expect "the desktop entry is not valid" desktop-file-validate "$desktop"
expect "the desktop entry does not start vorlane" grep -qx "Exec=vorlane" "$desktop"
expect "the AppStream metadata is not valid" \
    appstreamcli validate --no-net --no-color "$root/usr/share/metainfo/org.vorlane.Vorlane.metainfo.xml"
depends=$(dpkg-deb --field "$deb" Depends)
for package in libqt6widgets6 libsqlite3-0 libodbc2 libqt6sql6-sqlite libqt6sql6-odbc libqt6svg6 \
    qt6-qpa-plugins unixodbc adduser debconf libpoppler-qt6-3 libtesseract5 libquazip1-qt6-1 tesseract-ocr-eng \
    qt6-image-formats-plugins; do
    [[ ", $depends," == *", $package"[\ ,]* ]] || fail "the package does not depend on $package: $depends"
done

lintian --fail-on error --tag-display-limit 0 "$deb" >"$work/lintian.log" 2>&1 ||
    { cat "$work/lintian.log"; fail "lintian finds errors"; }
echo "lintian:"
cat "$work/lintian.log"

# --- Installed for real -------------------------------------------------------------------
if [ "$(id -u)" -ne 0 ]; then
    echo "Not root: the package is not installed for real."
    exit 0
fi
if dpkg-query -W -f='${Status}' vorlane 2>/dev/null | grep -q installed || [ -e /var/lib/vorlane ]; then
    echo "This machine has Vorlane installed: the package is not installed for real."
    exit 0
fi
for tool in sqlite3 useradd runuser debconf-set-selections; do
    command -v "$tool" >/dev/null || skip "$tool is missing"
done
getent group vorlane >/dev/null || made_group=true
export DEBIAN_FRONTEND=noninteractive
data=/var/lib/vorlane
db=$data/Vorlane.mdb
installed=true
dpkg --install "$deb" >"$work/install.log" 2>&1 || { cat "$work/install.log"; fail "dpkg could not install it"; }
expect "the data folder is not the group's" test "$(stat -c %a:%G:%U "$data")" = 2775:vorlane:root
expect "the backup folder is not the group's" test "$(stat -c %a:%G "$data/Backup")" = 2775:vorlane
expect "the database is not group-writable" test "$(stat -c %a:%G "$db")" = 664:vorlane
expect "vorlane is not on the PATH" test "$(command -v vorlane)" = /usr/bin/vorlane

user=vorlanetest$$
useradd --create-home --groups vorlane --shell /bin/sh "$user"
run=$(getent passwd "$user" | cut -d: -f6)/run
install -d -o "$user" -m 700 "$run"
as_user() { runuser -u "$user" -- env XDG_RUNTIME_DIR="$run" "$@"; }
# The user writes the database; the engine's journal goes into the folder beside it.
expect "a member of the group cannot save" \
    as_user sqlite3 "$db" "insert into DocumentType (TypeID, DocType, UpdatedBy) values (4711, 'Packaged', 1)"
# The program starts for the user and keeps running, with nothing said on the way but the
# offscreen platform's notes on what it cannot do.
status=0
as_user env QT_QPA_PLATFORM=offscreen timeout 4 vorlane >"$work/vorlane.log" 2>&1 || status=$?
[ "$status" -eq 124 ] || { cat "$work/vorlane.log"; fail "vorlane ended with $status instead of running"; }
! grep -v "^This plugin does not support" "$work/vorlane.log" || fail "vorlane complained on starting"

saved() { [ "$(sqlite3 "$db" "select DocType from DocumentType where TypeID = 4711")" = Packaged ]; }
dpkg --remove vorlane >/dev/null
expect "removing left the program" test ! -e /usr/lib/vorlane/Vorlane
expect "removing lost the saved row" saved
dpkg --purge vorlane >/dev/null
expect "a purge without an answer deleted the database" saved
dpkg --install "$deb" >/dev/null
expect "installing again replaced the database" saved
echo "vorlane vorlane/purge-data boolean true" | debconf-set-selections
dpkg --purge vorlane >/dev/null
installed=false
expect "a purge answered yes kept the data" test ! -e "$data"
echo "Installed, used by $user, removed and purged."
