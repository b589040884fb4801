# Writes CHANGELOG.md as a Debian changelog: awk -v maintainer="Name <address>" -f changelog.awk CHANGELOG.md
function finish(    command, date) {
    if (version == "") return
    command = "LC_ALL=C date -u -R -d " day
    command | getline date
    close(command)
    printf "\n -- %s  %s\n\n", maintainer, date
}
/^## / {
    finish()
    version = $2
    day = substr($3, 2, 10)
    printf "tarvik (%s) unstable; urgency=medium\n\n", version
}
/^- / { print "  * " substr($0, 3) }
/^  [^ ]/ { print "    " substr($0, 3) }
END { finish() }
