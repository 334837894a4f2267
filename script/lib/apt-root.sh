# shellcheck shell=bash
# Downloading packages that are unpacked, not installed, independently of the machine's. Sourced by bash.

# debian_mirror: prints the source of this machine's main packages; fails if apt's configuration has none.
debian_mirror()
{
    local mirror
    mirror=$(apt-get indextargets --no-release-info \
        --format '$(IDENTIFIER) $(RELEASE) $(COMPONENT) $(REPO_URI)' |
        awk -v codename="$(. /etc/os-release && echo "${VERSION_CODENAME:-}")" \
            '$1 == "Packages" && $3 == "main" && !found && ($2 == codename || $2 == "stable") {
                print $4
                found = 1
            }')
    if [ -z "$mirror" ]; then
        echo "${0##*/}: apt's configuration names no mirror of this Debian's main packages" >&2
        return 1
    fi
    echo "$mirror"
}

# apt_root ROOT ARCHITECTURE SUITE...: creates a configuration of apt in the directory ROOT, in which nothing
# is installed. Later apt commands use it. Downloaded packages are in ROOT/cache/archives.
apt_root()
{
    local root=$1 mirror suite
    mirror=$(debian_mirror)
    mkdir -p "$root/etc/apt.conf.d" "$root/lists/partial" "$root/cache/archives/partial"
    : >"$root/status"
    for suite in "${@:3}"; do
        echo "deb $mirror $suite main"
    done >"$root/etc/sources.list"
    # Prefer the newest emulator of all suites.
    printf '%s\n' 'Package: qemu-* seabios' 'Pin: version *' 'Pin-Priority: 500' >"$root/etc/preferences"
    # This machine's network settings, such as proxies, but not its hooks.
    apt-config dump | grep '^Acquire::' >"$root/apt.conf"
    cat >>"$root/apt.conf" <<END
APT::Architecture "$2";
APT::Architectures { "$2"; };
APT::Install-Recommends "false";
APT::Sandbox::User "$(id -un)";
Dir::Etc "$root/etc";
Dir::Etc::SourceParts "/dev/null";
Dir::Etc::PreferencesParts "/dev/null";
Dir::Etc::Trusted "/etc/apt/trusted.gpg";
Dir::Etc::TrustedParts "/etc/apt/trusted.gpg.d";
Dir::State "$root";
Dir::State::Lists "$root/lists";
Dir::State::Status "$root/status";
Dir::Cache "$root/cache";
END
    export APT_CONFIG=$root/apt.conf
    apt-get update -qq
}
