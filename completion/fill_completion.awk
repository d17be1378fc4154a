# Fills a completion's source: "@GROUPS@" becomes the names of all groups, and the line that holds
# "@KEYS_OF_EACH_GROUP@" one branch of a shell "case" for each group. Bash and zsh read it alike.
# "@COMMANDS@" and "@IDS@" become the commands of tarnwick-config and the ids of its faults.
#
#     awk -v help=HELP -v faults=IDS -f fill_completion.awk VOCABULARY SOURCE
#
# VOCABULARY has a line "GROUP KEY" for every key; HELP and IDS are what the program prints.

function joined(list, name) {
    return list (list == "" ? "" : " ") name
}

BEGIN {
    while ((getline line < faults) > 0) {
        split(line, fields, "\t")
        ids = joined(ids, fields[1])
    }
    while ((getline line < help) > 0) {
        if (is_command && split(line, fields, " ") > 0)
            commands = joined(commands, fields[1])
        is_command = is_command || line == "Subcommands:"
    }
}

NR == FNR {
    if (!($1 in keys))
        groups = joined(groups, $1)
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
    gsub(/@COMMANDS@/, commands)
    gsub(/@IDS@/, ids)
    print
}
