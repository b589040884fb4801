#include "CommandLine/Grammar/CompletionScripts.h"

namespace tarvik::CommandLine::CompletionScripts {

namespace {

/// Bash 3.2, which a Mac has, cannot change its mind while it completes: there file names are always a way out.
constexpr std::string_view bash = R"script(# Completes tarvik in bash.
_tarvik() {
    local line kind=
    COMPREPLY=()
    while IFS= read -r line; do
        if [[ -z $kind ]]; then kind=$line; else COMPREPLY+=("$line"); fi
    done < <(command tarvik --complete bash "${COMP_LINE:0:COMP_POINT}" "$COMP_WORDBREAKS" 2>/dev/null)
    case $kind in
        files) compopt -o default 2>/dev/null ;;
        folders) compopt -o dirnames 2>/dev/null ;;
    esac
    return 0
}
if ((BASH_VERSINFO[0] < 4)); then
    complete -o default -F _tarvik tarvik
else
    complete -F _tarvik tarvik
fi
)script";

constexpr std::string_view zsh = R"script(#compdef tarvik
# Completes tarvik in zsh.
_tarvik() {
    local line kind
    local -a lines words_ shown
    lines=("${(@f)$(command tarvik --complete zsh "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)}")
    kind=$lines[1]
    for line in "${(@)lines[2,-1]}"; do
        words_+=("${line%%$'\t'*}")
        if [[ $line == *$'\t'* ]]; then shown+=("${line/$'\t'/  -- }"); else shown+=("$line"); fi
    done
    local status_=1
    compadd -l -d shown -a words_ && status_=0
    [[ $PREFIX == -*=* ]] && compset -P '*='
    case $kind in
        files) _files && status_=0 ;;
        folders) _files -/ && status_=0 ;;
    esac
    return status_
}
if [[ $funcstack[1] == _tarvik ]]; then
    _tarvik "$@"
elif (( $+functions[compdef] )); then
    compdef _tarvik tarvik
else
    print -u2 "tarvik: run compinit before this script."
fi
)script";

constexpr std::string_view fish = R"script(# Completes tarvik in fish.
function __tarvik_complete
    set -l typed (commandline -opc) (commandline -ct)
    set -l answer (command tarvik --complete fish $typed[2..-1] 2>/dev/null)
    set -l kind $answer[1]
    set -e answer[1]
    printf '%s\n' $answer
    switch "$kind"
        case files
            __fish_complete_path $typed[-1]
        case folders
            __fish_complete_directories $typed[-1] ''
    end
end
complete -c tarvik -f -a '(__tarvik_complete)'
)script";

}  // namespace

std::string_view scriptFor(std::string_view shell) {
    if (shell == "zsh") return zsh;
    return shell == "fish" ? fish : bash;
}

}  // namespace tarvik::CommandLine::CompletionScripts
