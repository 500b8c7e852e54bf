# Completion of quorlan for bash. bash-completion loads it by its name.
# shellcheck shell=bash

# The names in the engine's tables that the tool takes as an argument. A name fills the first 25
# columns; nothing else of a row is looked at. The engine is given one second, as it may be silent
# indefinitely.
_quorlan_names()
{
    local table
    table=$(timeout 1 quorlan --list 2>/dev/null </dev/null) || return 0
    LC_ALL=C awk \
        'substr($0, 1, 25) ~ /^[0-9A-Za-z]+ +$/ && length($1) <= 16 { print $1 }' <<<"$table"
}

# The options that a word can stand for: a long one may be cut short and be in capitals.
_quorlan_options()
{
    case $1 in
    --?*) compgen -W "$2" -- "${1,,}" ;;
    -?*) printf '%s' "$1" ;;
    esac
}

_quorlan()
{
    # Set by bash-completion, which completes redirections itself and leaves them out of words. cur
    # is the current word up to the cursor, prev the one before it; --option=value is split in two.
    # shellcheck disable=SC2034 # comp_args is only set
    local cur prev words cword was_split comp_args
    if declare -F _comp_initialize >/dev/null; then
        _comp_initialize -s -- "$@" || return
    else
        local split
        _init_completion -s || return
        [[ $split == false ]] || was_split=yes
    fi

    local others="-h -v --help --version --colors --update --update-status"
    local commands="-d -s -p -r -c -l -u -e -i -m --debug= --start= --stop= --restart=
        --reconfigure= --list --status= --engine-status --pid= --monitor="
    local long="$others ${commands//=/}"

    # An option ends the line, or is a command; a second command would be refused.
    local word candidates="$others $commands"
    for word in "${words[@]:1:cword-1}"; do
        case $(_quorlan_options "${word%%[:=]*}" "$long") in
        -- | -h* | -v* | --help | --version) return ;;
        --colors | --update* | "") ;;
        *) candidates=$others ;;
        esac
    done

    # The part of the word that stays as it is. The shell itself cuts off --option= unless the user
    # took "=" out of COMP_WORDBREAKS.
    local attached=
    if [[ $was_split ]]; then
        [[ $COMP_WORDBREAKS == *=* ]] || attached=$prev=
    elif [[ $cur == -[!-]?* ]]; then
        prev=${cur:0:2} attached=$prev cur=${cur:2}
    fi

    case $(_quorlan_options "$prev" "$long") in
    -d | --debug) candidates="true false" ;;
    -[sprcuim] | --start | --stop | --restart | --reconfigure | --status | --pid | --monitor)
        candidates=$(_quorlan_names)
        ;;
    *) [[ ! $was_split && ! $attached ]] || return ;;
    esac

    mapfile -t COMPREPLY < <(compgen -P "$attached" -W "$candidates" -- "$cur")
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then
        compopt -o nospace
    fi
}

complete -F _quorlan quorlan
