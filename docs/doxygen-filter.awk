# Leaves out, for doxygen, what needs no comment because it does what it does everywhere: copy and move constructors and
# assignments without a comment of their own, and hash functions for the standard library.
/^template </ && !insideHash {
    template = $0 # whose it is the next line tells
    next
}
/^struct std::hash</ { insideHash = 1 }
insideHash {
    print template != "" ? "\n" : ""
    template = ""
    if ($0 == "};") insideHash = 0
    next
}
template != "" {
    print template
    template = ""
}
{
    text = $0
    gsub(/^ +|<T>| *\/\/ NOLINT.*/, "", text)
    isAssignment = text ~ /^[A-Za-z0-9]+& operator=\((const )?[A-Za-z0-9]+(&|&&)?( other)?\)/
    isConstruction = 0
    if (match(text, /^[A-Za-z0-9]+\((const )?[A-Za-z0-9]+(&|&&)( other)?\)/)) {
        split(substr(text, 1, RLENGTH), pieces, /[()]/)
        type = pieces[2]
        gsub(/^const |&| other$/, "", type)
        isConstruction = type == pieces[1]
    }
    # Only what ends on its line, so that nothing is cut in half.
    isWhole = text ~ /(;|\})$/
    print ((isAssignment || isConstruction) && isWhole && !hasComment) ? "" : $0
    hasComment = text ~ /^\/\/\// && text != "/// @}"
}
