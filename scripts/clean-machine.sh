#!/usr/bin/env bash
# Does what a stranger does: both commands of the README, from a clean clone, on a Debian that has nothing installed, and
# then a client of the installed package where no source is left. Everything happens in a root folder of its own.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
release=bookworm
clone=/srv/lys_colortable
prefix=/opt/lys

usage() {
    cat <<'EOT'
usage: scripts/clean-machine.sh [FOLDER]

Makes a fresh Debian 12 in FOLDER (default: a temporary one, removed at the end; a given one is kept, and reused when it
holds one already), clones the last commit into it, and runs ./run, ./check and a client of the installed package there.
Wants root and debootstrap; downloads about 1 GB. Ends with status 0 when every step did.
EOT
}

fail() {
    printf 'clean-machine: %s\n' "$@" >&2
    exit 1
}

# Runs in a mount and process name space of its own: what it mounts and starts is gone when it ends, however it ends.
inside() {
    local machine="$1"
    mount --make-rprivate /
    mount -t proc proc "$machine/proc"
    mount -t tmpfs -o mode=1777 tmp "$machine/tmp"
    mount -t tmpfs -o mode=755 dev "$machine/dev"
    local node
    for node in null zero full random urandom tty; do
        : >"$machine/dev/$node"
        mount --bind "/dev/$node" "$machine/dev/$node"
    done
    ln -s /proc/self/fd "$machine/dev/fd"
    mkdir "$machine/dev/shm"
    mount -t tmpfs -o mode=1777 shm "$machine/dev/shm"
    cat >"$machine/root/stranger.sh" <<EOT
set -euo pipefail
step() {
    local begin=\$SECONDS
    printf '\n==== %s\n' "\$1"
    "\${@:2}"
    printf '==== %s: done in %d s\n' "\$1" \$((SECONDS - begin))
}
cd $clone
step "./run" ./run </dev/null
test -s build/pictures/workbench.png
step "./check" ./check </dev/null
step "install" cmake --install build/release --prefix $prefix
cp -r examples /srv/examples
cd /srv
rm -rf $clone
for example in embed handler; do
    step "configure \$example" cmake -G Ninja -S examples/\$example -B client/\$example -DCMAKE_PREFIX_PATH=$prefix
    step "build \$example" cmake --build client/\$example
done
step "the client's window" env QT_QPA_PLATFORM=offscreen client/embed/embed /srv/embed.png
test -s /srv/embed.png
step "the installed program" $prefix/bin/colortable --help >/dev/null
step "the installed window" env -u DISPLAY xvfb-run -a $prefix/bin/workbench builtin:casting@64 --screenshot /srv/workbench.png
test -s /srv/workbench.png
EOT
    chroot "$machine" /usr/bin/env -i HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        LANG=C.UTF-8 CI="${CI:-}" bash /root/stranger.sh
}

case "${1:-}" in
    -h | --help)
        usage
        exit 0
        ;;
    --inside)
        inside "$2"
        exit 0
        ;;
esac
[ $# -le 1 ] || fail "one folder at most, see --help."
[ "$(id -u)" -eq 0 ] || fail "making a root folder needs root."
command -v debootstrap >/dev/null || fail "debootstrap is missing: apt-get install debootstrap"

if [ $# -eq 1 ]; then
    mkdir -p "$1"
    machine="$(cd "$1" && pwd)"
else
    machine="$(mktemp -d)"
    # --one-file-system: a mount that should still be there is not followed.
    trap 'rm -rf --one-file-system "$machine"' EXIT
fi
if [ ! -x "$machine/usr/bin/git" ]; then
    echo "Making a Debian $release in $machine"
    debootstrap --variant=minbase --include=git,ca-certificates "$release" "$machine" >"$machine.log" ||
        fail "debootstrap failed, see $machine.log."
    rm -f "$machine.log"
fi
cp -L /etc/resolv.conf "$machine/etc/resolv.conf"
rm -rf "${machine:?}$clone" "${machine:?}$prefix" "$machine/srv/examples" "$machine/srv/client" "$machine/root/.cache"
git clone --quiet --no-local "$root" "$machine$clone"
echo "Cloned $(git -C "$machine$clone" log -1 --format='%h, %s')"
begin=$SECONDS
unshare --mount --pid --fork --kill-child bash "${BASH_SOURCE[0]}" --inside "$machine"
printf '\nclean-machine: both commands and the client went through in %d s\n' $((SECONDS - begin))
