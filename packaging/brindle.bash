# SPDX-License-Identifier: ISC
# Completion for bash: commands, options, presets and controls are those that the program lists.
_brindle() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command= each found=
    for each in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $each in
        -*) ;;
        *) command=$each && break ;;
        esac
    done
    case $before,$word in
    --preset,*) found=$("$1" info | sed -n '/^Presets:/,$ s/^  //p') ;;
    --set,*) found=$("$1" info | sed -n 's/^ *[0-9]*  \([a-z0-9_]*\)  .*[0-9].*/\1=/p') ;;
    *,-*) found=$("$1" $command --help | grep -oE '^ .*--[a-z-]+' | grep -oE '[-][-][a-z-]+') ;;
    *) [ -n "$command" ] || found=$("$1" --help | sed -n '/^Subcommands:/,$ s/^  \([a-z]*\) .*/\1/p') ;;
    esac
    COMPREPLY=()
    while IFS= read -r each; do
        [[ -n $each && $each == "$word"* ]] && COMPREPLY+=("$(printf %q "$each")")
    done <<<"$found"
}
complete -o default -F _brindle brindle
