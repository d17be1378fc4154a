# Fills a completion's source: "@GROUPS@" becomes the names of all groups, and the line that holds
# "@KEYS_OF_EACH_GROUP@" one branch of a shell "case" for each group. Bash and zsh read it alike.
#
#     awk -f fill_completion.awk VOCABULARY SOURCE
#
# VOCABULARY has a line "GROUP KEY" for every key.

NR == FNR {
    if (!($1 in keys))
        groups = groups (groups == "" ? "" : " ") $1
    keys[$1] = keys[$1] " " $2
    next
}

/@KEYS_OF_EACH_GROUP@/ {
    count = split(groups, names, " ")
    for (i = 1; i <= count; i++)
        printf "        %s) keys=(%s) ;;\n", names[i], substr(keys[names[i]], 2)
    next
}

{
    gsub(/@GROUPS@/, groups)
    print
}
