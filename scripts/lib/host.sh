# shellcheck shell=bash disable=SC2154 # scratch, a folder, is the caller's
# What the making of a Debian root needs of the machine. Sourced after common.sh.

keyring=/usr/share/keyrings/debian-archive-keyring.gpg

# Finds out what is missing: remedies, the commands for root that bring it; refusal, what the kernel said to user
# namespaces; settings, the commands for root that allow them, as far as they are known.
look_at_host() {
    remedies=() settings=() refusal=''
    local packages=()
    command -v mmdebstrap >/dev/null || packages+=(mmdebstrap)
    command -v npm >/dev/null || packages+=(npm)
    command -v xz >/dev/null || packages+=(xz-utils)
    [ -f "$keyring" ] || packages+=(debian-archive-keyring)
    [ -z "$in_user_namespace" ] || command -v newuidmap >/dev/null || packages+=(uidmap)
    [ ${#packages[@]} = 0 ] || remedies+=("apt-get install -y --no-install-recommends ${packages[*]}")
    [ -z "$in_user_namespace" ] || look_at_user_namespaces
}

look_at_user_namespaces() {
    local ids trial=("${namespaces[@]}")
    if ! have_subordinate_ids /etc/subuid || ! have_subordinate_ids /etc/subgid; then
        ids=$(free_ids)
        remedies+=("usermod --add-subuids $ids --add-subgids $ids $(id -un)")
    fi
    # Without them a smaller trial must do.
    [ ${#remedies[@]} = 0 ] || trial=(unshare --mount --pid --fork --kill-child --user --map-root-user)
    if refusal=$("${trial[@]}" --net bash -ec 'mount -t tmpfs tmpfs /mnt; mount -t proc proc /proc' 2>&1); then
        refusal=''
    else
        refusal=${refusal:-without a word}
        find_settings
    fi
}

have_subordinate_ids() { # /etc/subuid or /etc/subgid
    awk -F: -v name="$(id -un)" -v id="$(id -u)" \
        '($1 == name || $1 == id) && $3 >= 65536 { found = 1 } END { exit !found }' "$1" 2>/dev/null
}

# A range that nobody has yet.
free_ids() {
    cat /etc/subuid /etc/subgid 2>/dev/null |
        awk -F: 'BEGIN { free = 100000 } $2 + $3 > free { free = $2 + $3 } END { print free "-" free + 65535 }'
}

find_settings() {
    local name bad good
    while read -r name bad good; do
        [ "$(cat "/proc/sys/$name" 2>/dev/null)" != "$bad" ] || settings+=("sysctl -w ${name/\//.}=$good")
    done <<'END'
user/max_user_namespaces 0 10000
kernel/unprivileged_userns_clone 0 1
kernel/apparmor_restrict_unprivileged_userns 1 0
END
}

tell_what_is_missing() {
    printf 'something is missing on this machine\n'
    if [ ${#remedies[@]} -gt 0 ] || [ ${#settings[@]} -gt 0 ]; then
        printf 'As root, run:\n'
        printf '    %s\n' "${remedies[@]}" "${settings[@]}"
    fi
    [ -n "$refusal" ] || return 0
    printf 'User namespaces, or mounts in them, are forbidden here: %s\n' "$refusal"
    [ ${#settings[@]} -gt 0 ] || cat <<'END'
If this is a container, it must be started so that it allows them and shows all of /proc. With docker:
    --security-opt seccomp=unconfined --security-opt apparmor=unconfined --security-opt systempaths=unconfined
END
}

# Only root changes the machine, and nobody the kernel's settings; everybody else is told what to do.
prepare_host() {
    local command
    command -v apt-get >/dev/null || die "needs a Debian or Ubuntu: there is no apt-get here"
    [ -z "$in_user_namespace" ] || [[ $(unshare --help) == *--map-auto* ]] ||
        die "needs unshare of util-linux 2.38 or newer, as Debian 12 and Ubuntu 24.04 have it"
    look_at_host
    if [ "$(id -u)" = 0 ] && [ -z "$refusal" ] && [ ${#remedies[@]} -gt 0 ]; then
        say "installing on this machine what is missing"
        quietly apt-get update
        for command in "${remedies[@]}"; do quietly bash -c "$command"; done
        look_at_host
    fi
    if [ ${#remedies[@]} -gt 0 ] || [ -n "$refusal" ]; then die "$(tell_what_is_missing)"; fi
}

# Runs a command whose output matters only when it fails.
quietly() {
    local what="$*" log
    log=$(mktemp "$scratch/log.XXXXXX")
    "$@" >"$log" 2>&1 </dev/null && return
    tail -n 20 "$log" >&2
    die "this failed: ${what%%$'\n'*}"
}

# The mirror from which this machine has its own Debian, also before it asked it for anything. On others, such as
# an Ubuntu, nothing: mmdebstrap then takes the mirror that it knows itself.
host_mirror() (
    ID='' VERSION_CODENAME=''
    . /etc/os-release
    [ "$ID" = debian ] || return 0
    apt-get indextargets --no-release-info --format '$(RELEASE) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
        awk -v name="$VERSION_CODENAME" '
            $2 == "main" && ($1 == name || $1 ~ /^(oldstable|stable|testing|unstable|sid)$/) && !found++ { print $3 }'
)

# Makes a Debian of one suite, without the updates that are kept beside it. The signatures of what it is made of are
# checked against $keyring.
make_debian() { # suite, folder, options of mmdebstrap...
    local suite=$1 folder=$2 mirror source=()
    shift 2
    mirror=$(host_mirror)
    if [ -n "$mirror" ]; then
        source=("$scratch/sources.list")
        echo "deb [signed-by=$keyring] $mirror $suite main" >"${source[0]}"
    else
        set -- --setup-hook="sed -i '/ $suite /!d' \"\$1/etc/apt/sources.list\"" "$@"
    fi
    quietly "${namespaces[@]}" mmdebstrap --mode=root --keyring="$keyring" "$@" "$suite" "$folder" "${source[@]}"
}
