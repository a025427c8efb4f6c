#!/usr/bin/env bash
# What cpack makes: the archive holds every file of every package, and works where it is unpacked;
# each Debian package holds and depends on what it must, and the program needs nothing else of this
# project. scripts/test-packages uses them.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

archives=$WORK/archives
rm -rf "$archives"
mkdir -p "$archives/unpacked"
quietly cpack --config "$BUILD_TREE/CPackConfig.cmake" -G TGZ -B "$archives"
expect "what cpack makes" vlfolioeventclassifier-1.0.0-Linux.tar.gz \
    "$(cd "$archives" && ls -- *.gz)"
tar -xzf "$archives"/*.tar.gz -C "$archives/unpacked" --strip-components=1
expect_all_files "the archive" "$archives/unpacked"
expect_program "$archives/unpacked/bin/vlfolio-classify"

needs dpkg-deb dpkg-shlibdeps file

packages=$WORK/packages
root=$packages/root
rm -rf "$packages"
mkdir -p "$root"
quietly cpack --config "$BUILD_TREE/CPackConfig.cmake" -G DEB -B "$packages"

for package in "$packages"/*.deb; do
    name=$(dpkg-deb --field "$package" Package)
    dpkg-deb --fsys-tarfile "$package" | tar -t | sed -n "s|^\./usr/\(.*[^/]\)$|$name \1|p"
    dpkg-deb --extract "$package" "$root"
done | build_type_left_out | sort >"$packages/contents"
# Zsh on Debian looks elsewhere for what packages bring, and man pages are compressed there. Lintian
# knows what else each of them has to hold.
diff <(contents | sed 's|zsh/site-functions|zsh/vendor-completions|; s|man1/.*|&.gz|') \
    <(grep -vE ' share/(doc|lintian)/' "$packages/contents") >&2 ||
    fail "the packages hold other files (>)"

# depends_on PACKAGE DEPENDENCY...: fails unless the package depends on all of them.
depends_on() {
    local depends dependency
    depends=", $(dpkg-deb --field "$packages/$1_"*.deb Depends),"
    for dependency in "${@:2}"; do
        [[ $depends == *", $dependency"* ]] || fail "$1 does not depend on $dependency: $depends"
    done
}

depends_on libvlfolioeventclassifier1 "libc6 (" "libstdc++6 (" "libqt6core6"
depends_on libvlfolioeventclassifier-dev "libvlfolioeventclassifier1 (= 1.0.0)," \
    "qt6-base-dev (>= 6.4),"
depends_on vlfolio-classify "libvlfolioeventclassifier1 (= 1.0.0)," "libqt6core6"

descriptions=$(for package in "$packages"/*.deb; do
    dpkg-deb --field "$package" Description
done | grep -o '^Classifier of the folders of picture collections (.*)' | sort)
expect "what the packages say they hold" "$(printf '%s\n' \
    "Classifier of the folders of picture collections "{'(development)','(libraries)','(program)'})" \
    "$descriptions"

expect_program "$root/usr/bin/vlfolio-classify"
