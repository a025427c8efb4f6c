#!/usr/bin/env bash
# What scripts/test-packages does within the Debian. The packages, which lintian has seen, are in
# /srv/packages.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

apt_get() {
    quietly apt-get -q -y --no-install-recommends "$@"
}

# What a bash with completions has loaded for the program.
bash_completion() {
    bash --norc -c '. /usr/share/bash-completion/bash_completion
        loader=$(complete -p -D | sed "s/.*-F \([^ ]*\).*/\1/")
        "$loader" vlfolio-classify
        complete -p vlfolio-classify'
}

# files_of_packages: prints the files of each package behind its name, but for those that every
# package has, which lintian knows.
files_of_packages() {
    local file
    for file in packages/*.deb; do
        dpkg-deb --fsys-tarfile "$file" | tar -t --exclude='*/share/doc/*' --exclude='*/lintian/*' |
            sed -n "s|^\./usr/\(.*[^/]\)$|$(dpkg-deb --field "$file" Package) \1|p"
    done
}

export DEBIAN_FRONTEND=noninteractive HOME=/root
cd /srv
mkdir -p work "collection/2019/2019-07-14 Beach"
# Zsh on Debian looks elsewhere for what packages bring, and man pages are compressed there.
expect "what the packages hold" \
    "$(contents | sed 's|zsh/site-functions|zsh/vendor-completions|; s|man1/.*|&.gz|')" \
    "$(files_of_packages | build_type_left_out)"
apt_get update

apt_get install ./packages/vlfolio-classify_*.deb ./packages/libvlfolioeventclassifier1_*.deb
expect_program vlfolio-classify
expect "where the report is" /srv/collection/vela.classification.results.html \
    "$(vlfolio-classify --no-open collection)"
expect "how many rows of a day the report has" 1 \
    "$(grep -c "2019-07-14 Beach" collection/vela.classification.results.html)"

apt_get install bash-completion fish man-db zsh
expect "the man page" /usr/share/man/man1/vlfolio-classify.1.gz "$(man --where vlfolio-classify)"
expect "what bash completes with" \
    "complete -o dirnames -F _vlfolio_classify vlfolio-classify" "$(bash_completion)"
expect "what zsh completes with" _vlfolio-classify \
    "$(zsh -f -c 'autoload -U compinit; compinit -D; echo $_comps[vlfolio-classify]')"
expect "what fish completes with" --summary \
    "$(fish -c 'complete -C "vlfolio-classify --su"' | cut -f 1)"

apt_get install ./packages/libvlfolioeventclassifier-dev_*.deb cmake g++ ninja-build pkg-config
build_consumer found
mapfile -t flags < <(ask_pkg_config --cflags --libs VLFolioEventClassifier)
compile_consumer linked "${flags[@]}"

expect "what the packages say they hold" "$(printf '%s\n' \
    "Classifier of the folders of picture collections ("{development,libraries,program}")")" \
    "$(dpkg-query --show --showformat='${binary:Summary}\n' '*vlfolio*' | sort)"
expect "what the one for development needs" \
    "libvlfolioeventclassifier1 (= 1.0.0), qt6-base-dev (>= 6.4)" \
    "$(dpkg-query --show --showformat='${Depends}' libvlfolioeventclassifier-dev)"
expect "what the program needs" "libvlfolioeventclassifier1 (= 1.0.0)" \
    "$(dpkg-query --show --showformat='${Depends}' vlfolio-classify |
        grep -o 'libvlfolio[^=]*(= [^)]*)')"

apt_get purge vlfolio-classify libvlfolioeventclassifier-dev libvlfolioeventclassifier1
expect "what is left of the packages" "" \
    "$(find /usr /etc /var -ipath '*vlcore*' -o -ipath '*vlfolio*')"
