#!/usr/bin/env bash
# Installs the Debian packages of scripts/packages.txt that are missing; does nothing, and asks for nothing, when all are
# there.
set -euo pipefail

list="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/packages.txt"
default_groups=(core application tests graphics)

usage() {
    cat <<EOT
usage: scripts/install-packages.sh [GROUP...]

Installs what is missing of the package groups, by default: ${default_groups[*]}.
EOT
    awk '$1 == "#" && $2 == "group" { sub(/^# group /, "  "); print }' "$list"
}

packages_of_group() {
    awk -v wanted="$1:" '
        $1 == "#" && $2 == "group" { inside = ($3 == wanted) }
        inside && NF == 1 && $1 !~ /^#/ { print $1 }' "$list"
}

fail() {
    printf 'install-packages: %s\n' "$@" >&2
    exit 1
}

groups=()
for argument in "$@"; do
    case "$argument" in
        -h | --help)
            usage
            exit 0
            ;;
        *) groups+=("$argument") ;;
    esac
done
[ ${#groups[@]} -gt 0 ] || groups=("${default_groups[@]}")

wanted=()
for group in "${groups[@]}"; do
    mapfile -t of_group < <(packages_of_group "$group")
    [ ${#of_group[@]} -gt 0 ] || fail "there is no package group '$group' in $list."
    wanted+=("${of_group[@]}")
done

command -v dpkg-query >/dev/null ||
    fail "this is no Debian system; install the equivalents of these packages by hand:" "  ${wanted[*]}"

declare -A installed=()
while read -r name status; do
    [ "$status" = installed ] && installed["$name"]=1
done < <(dpkg-query -W -f '${Package} ${db:Status-Status}\n' "${wanted[@]}" 2>/dev/null || true)

missing=()
for name in "${wanted[@]}"; do
    [ -n "${installed[$name]:-}" ] || missing+=("$name")
done
if [ ${#missing[@]} -eq 0 ]; then
    echo "All ${#wanted[@]} packages of ${groups[*]} are installed."
    exit 0
fi
echo "Installing ${#missing[@]} of ${#wanted[@]} packages: ${missing[*]}"

by_hand="Have an administrator run: apt-get install --no-install-recommends ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "not root, and there is no sudo." "$by_hand"
    as_root=(sudo)
    # Nobody can type a password where there is no terminal.
    [ -t 0 ] || as_root+=(-n)
fi
quiet=()
[ -t 1 ] || quiet=(-qq)
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get "${quiet[@]}" -o DPkg::Lock::Timeout=300)

# A package source that does not answer need not be the one that is needed: installing decides.
"${apt[@]}" update || echo "install-packages: the package lists could not be brought up to date, trying all the same." >&2
"${apt[@]}" install -y --no-install-recommends "${missing[@]}" >&2 || fail "apt-get could not install the packages." "$by_hand"
echo "Installed ${#missing[@]} packages."
