#!/usr/bin/env bash
# The Debian packages, installed by apt in a Debian that has nothing else. Minimal Debians are kept
# in VLFOLIO_DEBIANS; a copy is used once.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

skip() {
    echo "skipped: $*"
    exit 77
}

[ -n "${VLFOLIO_DEBIANS-}" ] || skip "VLFOLIO_DEBIANS names no directory for minimal Debians"
[ "$(. /etc/os-release && echo "$ID")" = debian ] || skip "this machine runs no Debian"
[ "$(id -u)" -eq 0 ] || skip "only root can run a Debian within this one"
for tool in debootstrap dpkg-deb dpkg-shlibdeps; do
    command -v "$tool" >/dev/null || skip "$tool is not installed"
done
own_namespaces=(unshare --mount --pid --fork --kill-child)
"${own_namespaces[@]}" true 2>/dev/null || skip "no file systems can be mounted here"

cd "$SOURCE_TREE"
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
# Not the one in which scripts/test-newer-qt installs what it needs.
minimal=$VLFOLIO_DEBIANS/$release-minimal
scripts/make-debian "$release" "$minimal"

root=$WORK/root
remove_root() {
    rm -rf --one-file-system "$root"
}
remove_root
trap remove_root EXIT
cp -a "$minimal" "$root"
cp -L /etc/resolv.conf "$root/etc/resolv.conf"
echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/unsafe-io"
mkdir -p "$root/srv/packages" "$root/srv/source/tests"
cp "$WORK/packages"/*.deb "$root/srv/packages"
cp -R tests/install "$root/srv/source/tests"

# Nothing of this machine's environment is known in there, but the way to the network.
mapfile -t proxies < <(env | grep -iE '^(http|https|no)_proxy=')
# shellcheck disable=SC2016 # the inner shell fills them in
"${own_namespaces[@]}" env -i "${proxies[@]}" LIBDIR="$LIBDIR" PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
    DEBIAN_FRONTEND=noninteractive SOURCE_TREE=/srv/source WORK=/srv/work CXX=g++ CXXFLAGS= \
    bash -c 'mount -t proc proc "$1/proc" && mount --rbind /dev "$1/dev" &&
        exec chroot "$1" /srv/source/tests/install/debian_root_steps.sh' - "$root"
