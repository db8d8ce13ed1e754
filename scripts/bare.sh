# Sourced by package and fresh after prepare.sh: a bare Debian 12 in a folder, as a stranger's machine is: nothing but
# apt and what every system has. Expects to be sourced from the repository's root.

BARE="$PWD/build/bare"
BARE_SYSTEM="$BARE/debian-12.tar"

# Made once, also by two scripts that run side by side.
make_bare_system() {
    install_packages mmdebstrap
    mkdir -p "$BARE"
    local lock
    exec {lock}>"$BARE/lock"
    flock $lock
    [ -e "$BARE_SYSTEM" ] || download_bare_system
    exec {lock}>&-
}

download_bare_system() {
    say "Making a bare Debian 12 (two to three minutes)"
    local debian=http://deb.debian.org/debian
    as_root mmdebstrap --quiet --format=tar --variant=minbase bookworm "$BARE_SYSTEM.new" "deb $debian bookworm main" \
        "deb $debian bookworm-updates main" "deb $debian-security bookworm-security main"
    as_root mv "$BARE_SYSTEM.new" "$BARE_SYSTEM"
}

# open_bare_system NAME: sets bare_root to the folder of a fresh one. What is installed in it comes from the network
# once: the packages are kept for the next of that name.
open_bare_system() {
    bare_root="$BARE/$1"
    close_bare_system
    mkdir -p "$bare_root" "$bare_root.archives/partial"
    as_root tar -xpf "$BARE_SYSTEM" --numeric-owner -C "$bare_root"
    as_root cp /etc/resolv.conf "$bare_root/etc/"
}

# Nothing is mounted there: in_bare_system mounts for itself alone.
close_bare_system() { as_root rm -rf --one-file-system "$bare_root"; }

# in_bare_system ACCOUNT COMMAND: logs in there and runs it, unattended. Mounts and processes have name spaces of
# their own, which end with it, however it ends.
in_bare_system() {
    as_root unshare --mount --pid --ipc --fork --kill-child sh -euc '
        mount --bind "$1" "$1"  # a root folder is a mount point everywhere
        mount -t proc proc "$1/proc"
        mount -t tmpfs -o mode=1777 tmpfs "$1/dev/shm"
        mount -t devpts -o newinstance,ptmxmode=666,mode=620,gid=5 devpts "$1/dev/pts"
        mount --bind "$2" "$1/var/cache/apt/archives"
        code=0
        chroot "$1" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM=dumb runuser -l "$3" -c "$4" </dev/null || code=$?
        exit $code  # not replaced by the command: the first process has to bury orphans
    ' sh "$bare_root" "$bare_root.archives" "$1" "$2"
}

# copy_checkout FOLDER: what belongs to the source, and no build.
copy_checkout() {
    mkdir -p "$1"
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files -z --cached --others --exclude-standard | while IFS= read -rd '' file; do
            [ ! -e "$file" ] || printf '%s\0' "$file"  # one that is deleted is still in the list
        done
    else
        find . \( -path ./build -o -path ./.cache \) -prune -o -type f -print0
    fi | tar -c --null -T - | tar -x -C "$1"
}

# boot_bare_system COMMAND: its init starts the services, runs the command as root, and ends. What it prints is in
# /var/log/trial there. The groups of processes that init makes are removed again.
boot_bare_system() {
    as_root tee "$bare_root/etc/systemd/system/trial.service" >/dev/null <<END
[Unit]
Requires=basic.target
After=basic.target
SuccessAction=exit
FailureAction=exit
[Service]
Type=oneshot
ExecStart=$1
StandardOutput=truncate:/var/log/trial
StandardError=inherit
TimeoutStartSec=10min
END
    as_root sh -euc '
        groups=$(findmnt --noheadings --first-only --output TARGET --types cgroup2)
        group=$groups/kestrel-trial.$$
        mkdir "$group"
        echo $$ >"$group/cgroup.procs"
        code=0
        unshare --mount --pid --ipc --uts --cgroup --fork --kill-child sh -euc "
            mount --bind \"\$1\" \"\$1\"
            mount -t proc proc \"\$1/proc\"
            mount -t sysfs sysfs \"\$1/sys\"
            mount -t cgroup2 cgroup2 \"\$1/sys/fs/cgroup\"
            mount -t tmpfs -o mode=1777 tmpfs \"\$1/dev/shm\"
            mount -t tmpfs tmpfs \"\$1/run\"
            mount -t tmpfs -o mode=1777 tmpfs \"\$1/tmp\"
            exec chroot \"\$1\" env -i container=other PATH=/usr/sbin:/usr/bin:/sbin:/bin \
                /lib/systemd/systemd --system --unit=trial.service
        " sh "$1" </dev/null || code=$?
        echo $$ >"$groups/cgroup.procs"
        find "$group" -depth -type d -exec rmdir {} +
        exit $code
    ' sh "$bare_root"
}
