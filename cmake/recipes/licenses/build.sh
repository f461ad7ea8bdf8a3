#!/bin/bash
# The licence texts and notices of what a package of the library redistributes, with our changes to each, and an
# entry for its bill of materials (CycloneDX).
source "$(dirname "$0")/../common.sh"

recipes=$project/cmake/recipes
licenses=$prefix/share/licenses
bill=$prefix/share/sbom
rm -rf "$licenses" "$bill"
mkdir -p "$licenses" "$bill"

rows() { grep --invert-match '^#' "$1"; }

# archives NAME: file and sum of each archive that a recipe is built from
archives() { rows "$recipes/sources" | awk -v name="$1" '$1 == name { print $3, $4 }'; }

source_package() { rows "$recipes/sources" | awk -v name="$1" '$1 == name { print $2; exit }'; }

# With Debian's patches, the version is that of the archive that holds them, which comes last.
source_version() { archives "$1" | sed --quiet --regexp-extended '$ s/^[^_]*_(.*)\.(orig|debian)\.tar\..*/\1/p'; }

# take_texts NAME TEXT...
# From the top folder of the first archive: a second one holds Debian's patches.
take_texts() {
    local archive texts=("${@:2}")
    read -r archive _ < <(archives "$1")
    tar --extract --file="$sources/$archive" --directory="$licenses/$1" --transform='s|.*/||' \
        --wildcards --no-wildcards-match-slash "${texts[@]/#/*/}"
}

# installed_package PATTERN: its name and version; a known package that is not installed has no version
installed_package() { dpkg-query --show --showformat='${Package} ${Version}\n' "$1" | awk 'NF == 2'; }

# take_debian_texts NAME PACKAGE
take_debian_texts() {
    cp "/usr/share/doc/$2/copyright" "$licenses/$1/"
    case $1 in
    gcc) cp /usr/share/common-licenses/GPL-3 "$licenses/$1/" ;; # which Debian only refers to
    boost) # of 40,000 lines about its documentation, the licence
        sed --quiet --in-place '/Boost Software License - Version 1.0/,/^$/p' "$licenses/$1/copyright"
        ;;
    esac
}

# take_changes NAME
# Our own patches mark what was changed here.
take_changes() {
    local patch
    for patch in "$recipes/$1"/*.patch; do
        [ ! -e "$patch" ] || cp "$patch" "$licenses/$1/CHANGED-$(basename "$patch")"
    done
}

# describe NAME LICENCE VERSION PACKAGE_URL
describe() {
    jq --null-input --arg name "$1" --arg licence "${2//_/ }" --arg version "$3" --arg url "$4" \
        --arg patches "$(find "$licenses/$1" -name '*.patch' -printf "licenses/$1/%P\n")" \
        --arg texts "$(find "$licenses/$1" -type f -printf "licenses/$1/%P\n")" \
        --arg archives "$(archives "$1")" '
        {
            type: "library", "bom-ref": $name, name: $name, version: $version,
            licenses: [{expression: $licence}],
            purl: $url,
            pedigree: {patches: ($patches | split("\n") | map({type: "unofficial", diff: {url: .}}))},
            properties: ($texts | split("\n") | map({name: "licence text", value: .})),
            components: ($archives | split("\n") | map(split(" ") |
                {type: "file", name: .[0], hashes: [{alg: "SHA-256", content: .[1]}]}))
        }' > "$bill/$1.json"
}

while read -r name licence origin texts; do
    mkdir "$licenses/$name"
    if [ "$origin" = source ]; then
        # shellcheck disable=SC2086 # a list of names without blanks
        take_texts "$name" $texts
        take_changes "$name"
        version=$(source_version "$name")
        describe "$name" "$licence" "$version" "pkg:deb/debian/$(source_package "$name")@${version//+/%2B}?arch=source"
    else
        read -r package version < <(installed_package "$origin")
        take_debian_texts "$name" "$package"
        describe "$name" "$licence" "$version" "pkg:deb/debian/$package@${version//+/%2B}"
    fi
done < <(rows "$recipe_dir/components")

# A header inside the REST SDK has a licence of its own, which is its first comment.
mkdir "$licenses/safeint"
read -r archive _ < <(archives cpprestsdk)
tar --extract --to-stdout --file="$sources/$archive" --wildcards '*/SafeInt3.hpp' |
    sed --quiet '1,/\*\//p' > "$licenses/safeint/license.txt"
describe safeint MS-PL "$(sed --quiet 's/^Version //p' "$licenses/safeint/license.txt")" pkg:generic/safeint

for name in $(rows "$recipes/sources" | cut --delimiter=' ' --fields=1); do
    if [ ! -e "$bill/$name.json" ]; then
        echo "The table of components has no row for $name." >&2
        exit 1
    fi
done
if find "$licenses" -type f -empty | grep .; then
    echo "These texts are not where they are looked for." >&2
    exit 1
fi
