# Writes CHANGELOG.md as a Debian changelog: awk -v maintainer="Name <address>" -f changelog.awk CHANGELOG.md
function finish(    command, date) {
    if (version == "") return
    command = "LC_ALL=C date -u -R -d " day
    command | getline date
    close(command)
    printf "\n -- %s  %s\n\n", maintainer, date
}
# A line of at most 78 characters, and what is left below it.
function wrap(text, begin,    count, words, line, i) {
    count = split(text, words, " ")
    line = begin
    for (i = 1; i <= count; i++) {
        if (length(line) + length(words[i]) > 77) {
            print line
            line = "   "
        }
        line = line " " words[i]
    }
    print line
}
/^## / {
    finish()
    version = $2
    day = substr($3, 2, 10)
    printf "tarvik (%s) unstable; urgency=medium\n\n", version
}
/^- / { wrap(substr($0, 3), "  *") }
/^  [^ ]/ { wrap($0, "   ") }
END { finish() }
