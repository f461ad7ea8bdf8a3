# Reads *.list (one-line style). Writes the entries of this Debian release as deb-src entries of another, and one for
# the unstable suite where the entry names the release itself.
# Variables: codename (this release), release (the other, or the same).

$1 == "deb" {
    line = $0
    sub(/^[ \t]*deb[ \t]+/, "", line)
    options = ""
    if (match(line, /^\[[^]]*\][ \t]*/)) {
        options = substr(line, 1, RLENGTH)
        line = substr(line, RLENGTH + 1)
    }
    split(line, word, " ")
    if (word[2] ~ "^" codename "(-updates|-security)?$")
        print "deb-src", options word[1], release substr(word[2], length(codename) + 1), "main"
    if (word[2] == codename) print "deb-src", options word[1], "unstable main"
}
