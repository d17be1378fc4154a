#!/bin/sh
# Boots this machine's own root file system, read-only under an overlay, and stays until it is
# told to stop (SIGTERM) or the container ends. Cleans its control groups up on every way out.
#
#     unshare --mount boot_container.sh NAME ROOT [systemd-nspawn option or kernel argument...]
#
# NAME names the control group, ROOT is an empty directory where the root file system appears.
set -eu
name=$1 root=$2
shift 2

# One group in each hierarchy that systemd manages: the unified one, the named one, or both.
groups=
for hierarchy in /sys/fs/cgroup /sys/fs/cgroup/unified /sys/fs/cgroup/systemd; do
    if [ -e "$hierarchy/cgroup.procs" ]; then
        groups="$groups $hierarchy/$name"
    fi
done
if [ -z "$groups" ]; then
    echo "no control groups are mounted" >&2
    exit 1
fi

# "0" would stand for a process that cannot be named from here, and to kill means this script's own group.
processes_in_groups() {
    for group in $groups; do
        find "$group" -name cgroup.procs -exec cat {} + 2>/dev/null | grep -vx 0 || true
    done
}

remove_groups() {
    for _ in 1 2 3 4 5 6 7 8 9 10; do
        left=
        for group in $groups; do
            find "$group" -depth -type d -exec rmdir {} + 2>/dev/null || true
            [ ! -d "$group" ] || left=yes
        done
        [ -n "$left" ] || return 0
        for process in $(processes_in_groups); do
            kill -KILL "$process" 2>/dev/null || true
        done
        sleep 0.2
    done
    echo "control groups left behind:$groups" >&2
}

container=
stop_container() {
    [ -z "$container" ] || kill -TERM "$container" 2>/dev/null || true
}
trap remove_groups EXIT
trap stop_container HUP INT TERM

for group in $groups; do
    mkdir "$group"
done
mount --bind / "$root"

(
    for group in $groups; do
        echo 0 >"$group/cgroup.procs"
    done
    exec systemd-nspawn --directory="$root" --volatile=overlay --boot --register=no --keep-unit \
        --link-journal=no --private-network --notify-ready=yes --console=read-only "$@" </dev/null
) &
container=$!

# A signal interrupts the first wait; the second one collects the container's end.
wait "$container" || wait "$container" || true
