# Completion of quorlan for bash. bash-completion loads it by its name.
# shellcheck shell=bash

# The names in the engine's tables that the tool takes as an argument. A name fills the first 25
# columns; one too long for the tool is followed by fewer than 9 blanks. The engine is given one
# second, as it may be silent for as long as it likes.
_quorlan_names()
{
    local table
    table=$(timeout 1 quorlan --list 2>/dev/null </dev/null) || return 0
    sed -n 's/^\([0-9A-Za-z]\{1,16\}\) \{9,24\}.*/\1/p' <<<"$table"
}

# An unambiguous beginning of a long option stands for the option.
_quorlan_full_name()
{
    local -a found
    mapfile -t found < <(compgen -W "$2" -- "$1")
    if [[ $1 == --?* && ${#found[@]} -eq 1 ]]; then
        printf '%s' "${found[0]}"
    else
        printf '%s' "$1"
    fi
}

_quorlan()
{
    local long="--help --version --colors --update --update-status --debug --start --stop --restart
        --reconfigure --list --status --engine-status --pid --monitor"
    local others="-h -v --help --version --colors --update --update-status"
    local commands="-d -s -p -r -c -l -u -e -i -m --debug= --start= --stop= --restart=
        --reconfigure= --list --status= --engine-status --pid= --monitor="

    # What is being completed (cur), the option it may belong to, and the part of the current word
    # that stands before it. "=" is a word of its own unless the user took it out of
    # COMP_WORDBREAKS.
    local cur=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} attached=
    case $cur in
    =) cur= ;;
    --*=*) option=${cur%%=*} attached=$option= cur=${cur#*=} ;;
    -[!-]?*) option=${cur:0:2} attached=$option cur=${cur:2} ;;
    *) [[ $option == = ]] && option=${COMP_WORDS[COMP_CWORD - 2]} ;;
    esac

    local candidates
    case $(_quorlan_full_name "$option" "$long") in
    -d | --debug) candidates="true false" ;;
    -[sprcuim] | --start | --stop | --restart | --reconfigure | --status | --pid | --monitor)
        candidates=$(_quorlan_names)
        ;;
    *)
        # A second command would be refused.
        candidates="$others $commands"
        local word
        for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
            case $word in
            -[dsprclueim]*) candidates=$others ;;
            --*) [[ $commands =~ "$word"=?([[:space:]]|$) ]] && candidates=$others ;;
            esac
        done
        [[ -z $attached ]] || return 0
        ;;
    esac

    mapfile -t COMPREPLY < <(compgen -P "$attached" -W "$candidates" -- "$cur")
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then
        compopt -o nospace
    fi
}

complete -F _quorlan quorlan
