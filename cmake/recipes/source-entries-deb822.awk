# Reads *.sources (deb822). Writes the entries of this Debian release as deb-src entries of another; where the entry
# names the release itself (not its updates or security suite), the unstable suite is added.
# Variables: codename (this release), release (the other, or the same).

function finish(    count, names, i, ours, unstable) {
    count = split(field["suites"], names, " ")
    for (i = 1; i <= count; i++) {
        if (names[i] == codename) unstable = " unstable"
        if (names[i] ~ "^" codename "(-updates|-security)?$")
            ours = ours " " release substr(names[i], length(codename) + 1)
    }
    if (ours != "" && field["types"] ~ /(^| )deb( |$)/ && tolower(field["enabled"]) !~ /no|false|0/)
        printf "Types: deb-src\nSuites:%s%s\nComponents: main\n%s\n", ours, unstable, rest
    delete field
    rest = ""
    name = ""
}

/^#/ { next }
/^[ \t]*$/ { finish(); next }
/^[^ \t]/ {
    name = tolower($0)
    sub(/:.*/, "", name)
}
name ~ /^(types|suites|components|enabled)$/ {
    value = $0
    sub(/^[^ \t]*:/, "", value)
    field[name] = field[name] " " value
    next
}
{ rest = rest $0 "\n" }
END { finish() }
