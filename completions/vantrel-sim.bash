# Completion of vantrel-sim for bash. bash-completion loads it by its name.
# shellcheck shell=bash

_vantrel_sim()
{
    local faults="no-accept close silent slow half reset stay-open garbage wrong-type no-result-code
        error-code refused-status control-characters huge"
    local commands="debug update update-status engine-status list start stop restart reconfigure
        monitor status pid"
    local i

    # After "--", it is the command that is completed.
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == -- ]]; then
            if declare -F _comp_command_offset >/dev/null; then
                _comp_command_offset $((i + 1))
            else
                _command_offset $((i + 1))
            fi
            return
        fi
    done

    # Set by bash-completion. cur is the current word up to the cursor, prev the one before it;
    # --option=value is split in two, but not at a colon.
    # shellcheck disable=SC2034 # comp_args is only set
    local cur prev words cword was_split comp_args
    if declare -F _comp_initialize >/dev/null; then
        _comp_initialize -s -n : -- "$@" || return
    else
        local split
        _init_completion -s -n : || return
        [[ $split == false ]] || was_split=yes
    fi

    for ((i = 1; i < cword; i++)); do
        case ${words[i]} in
        -h | -v | --help | --version) return ;;
        esac
    done

    local candidates=
    case $prev in
    -f | --fault)
        candidates=$faults
        if [[ $cur == *:* ]]; then
            candidates=$(compgen -P "${cur%%:*}:" -W "$commands")
        fi
        ;;
    --log-format) candidates="text json" ;;
    -s | --state | --log)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
        return
        ;;
    --delay) return ;;
    *)
        [[ ! $was_split ]] || return
        candidates="-h -v -s -f --help --version --state= --fault= --delay= --log= --log-format=
            --isolated --control --"
        ;;
    esac

    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then
        compopt -o nospace
    fi
    # The shell has cut off what is before a colon, too.
    if [[ $cur == *:* && $COMP_WORDBREAKS == *:* ]]; then
        COMPREPLY=("${COMPREPLY[@]#*:}")
    fi
}

complete -F _vantrel_sim vantrel-sim
