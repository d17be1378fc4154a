# Doxygen's view of vocabulary.h: in place of each list of rows the constants that come from it,
# each with its text as description.

BEGIN {
    while ((getline row < "src/vocabulary_names.h") > 0) {
        if (row ~ /^#define /) {
            split(row, words, /[ (]/)
            list = words[2]
        } else if (row ~ /^ *ROW\(/) {
            gsub(/^ *ROW\(|\).*$|"/, "", row)
            rows[list] = rows[list] row "\n"
        }
    }
}

# TARNWICK_AUDIO_KEYS(TARNWICK_DECLARE_KEY): "audio keys", each of the kind "Key".
/^TARNWICK_[A-Z_]*\(TARNWICK_DECLARE_[A-Z]*\)/ {
    split($0, words, /[()]/)
    title = tolower(substr(words[1], length("TARNWICK_") + 1))
    gsub(/_/, " ", title)
    kind = substr(words[2], length("TARNWICK_DECLARE_") + 1)
    kind = substr(kind, 1, 1) tolower(substr(kind, 2))
    declare(title, kind, rows[words[1]])
    next
}

{ print }

function declare(title, kind, list,    count, each, parts, number) {
    count = split(list, each, "\n") - 1
    print "/// @name " title "\n/// @{"
    for (number = 1; number <= count; ++number) {
        split(each[number], parts, ", ")
        text = parts[2] == "" ? parts[1] : parts[2]
        print "/// \"" text "\"\nextern const std::string k" kind parts[1] ";"
    }
    print "/// @}"
}
