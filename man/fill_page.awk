# Fills a manual page's source: the line "@VOCABULARY@" becomes the groups with their keys, and
# "@PROJECT_VERSION@" the version.
#
#     awk -v version=VERSION -f fill_page.awk VOCABULARY PAGE
#
# VOCABULARY has a line "GROUP KEY" for every key.

NR == FNR {
    if (!($1 in keys))
        groups[++count] = $1
    keys[$1] = keys[$1] " " $2
    next
}

# Literal lines, since filled text would get hyphens inside the names.
function print_keys(list,    names, total, i, line) {
    total = split(list, names, " ")
    print "```"
    for (i = 1; i <= total; i++) {
        if (line != "" && length(line " " names[i]) > 66) {
            print line
            line = ""
        }
        line = line (line == "" ? "" : " ") names[i]
    }
    print line
    print "```"
}

/^@VOCABULARY@$/ {
    for (i = 1; i <= count; i++) {
        printf "%s*%s*\n\n", (i > 1 ? "\n" : ""), groups[i]
        print_keys(keys[groups[i]])
    }
    next
}

{
    gsub(/@PROJECT_VERSION@/, version)
    print
}
