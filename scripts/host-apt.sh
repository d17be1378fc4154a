# shellcheck shell=bash
# How this machine reaches its packages, for scripts that make another Debian beside it: to be
# sourced. Whatever mirror, proxy or keyring the machine's own apt uses, the other one uses too.

host_codename() { (. /etc/os-release && echo "$VERSION_CODENAME"); }

# The files that list this machine's package sources, one a line.
host_apt_sources() {
    find /etc/apt/sources.list /etc/apt/sources.list.d -type f \
        \( -name '*.list' -o -name '*.sources' \) -size +0 2> /dev/null | sort
}

# This machine's settings for fetching packages (proxies, certificates, checks), as apt.conf text.
host_apt_settings() { apt-config dump | grep '^Acquire::' | grep -v '^Acquire::IndexTargets'; }

# Not every mirror keeps every index of a rarely asked architecture in step. With these options of
# mmdebstrap what cannot be fetched is left out; a package that is then missing still stops it.
# shellcheck disable=SC2016,SC2034 # expanded by mmdebstrap's shell; used where this file is sourced
tolerant_update=(--skip=update --setup-hook='APT_CONFIG="$MMDEBSTRAP_APT_CONFIG" apt-get update || true')
