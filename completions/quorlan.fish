# Completion of quorlan for fish, which finds it by its name.

set -g __quorlan_long --help --version --colors --update --update-status --debug --start --stop \
    --restart --reconfigure --list --status --engine-status --pid --monitor

# The names in the engine's tables that the tool takes as an argument. A name fills the first 25
# columns; nothing else of a row is looked at. The engine is given one second, as it may be silent
# indefinitely.
function __quorlan_names
    set -l table (timeout 1 quorlan --list 2>/dev/null </dev/null); or return
    printf '%s\n' $table | LC_ALL=C awk \
        'substr($0, 1, 25) ~ /^[0-9A-Za-z]+ +$/ && length($1) <= 16 { print $1 }'
end

# The options that a word can stand for: a long one may be cut short and be in capitals.
function __quorlan_options --argument-names word
    if string match -qr -- '^--.' $word
        string match -- (string lower -- $word)'*' $__quorlan_long
    else
        string match -r -- '^-.+' $word
    end
end

# Whether no word given, without an argument attached to it, is an option that matches the pattern.
function __quorlan_without --argument-names pattern
    for word in $argv[2..]
        __quorlan_options (string replace -r '[:=].*' '' -- $word) | string match -qr -- $pattern
        and return 1
    end
    return 0
end

# Whether an option can follow the words before the cursor.
function __quorlan_goes_on
    __quorlan_without '^(-[hv].*|--help|--version)$' (commandline -opc)[2..]
end

# Whether a command can follow the words given; a second one would be refused.
function __quorlan_no_command
    __quorlan_without '^(?!--(colors|update|update-status)$)' $argv
end

# Whether a command can follow the words before the cursor. If the last of them waits for its
# argument, that command itself is being completed.
function __quorlan_takes_command
    set -l words (commandline -opc)[2..]
    string match -qr -- '^-([dsprcuim]|-(debug|start|stop|restart|reconfigure|status|pid|monitor))$' \
        "$words[-1]"; and set -e words[-1]
    __quorlan_no_command $words
end

# Whether the word before the current one is one of the commands given, cut short or in capitals. fish
# knows long options by their whole names only.
function __quorlan_abbreviates
    set -l words (commandline -opc)[2..]
    set -l found (__quorlan_options "$words[-1]")
    test "$found" != "$words[-1]"; and contains -- "$found" $argv; or return
    set -e words[-1]
    __quorlan_no_command $words
end

complete -c quorlan -f
complete -c quorlan -n __quorlan_goes_on -s h -l help -d 'Display help information'
complete -c quorlan -n __quorlan_goes_on -s v -l version \
    -d 'Display version information of this application'
complete -c quorlan -n __quorlan_goes_on -l colors -d 'Use colors in the output'
complete -c quorlan -n __quorlan_goes_on -l update -d 'Request modules update'
complete -c quorlan -n __quorlan_goes_on -l update-status \
    -d 'Return the status of the modules update'
complete -c quorlan -n __quorlan_takes_command -s d -l debug -x -a 'true false' \
    -d 'Enter debug mode (true, false)'
complete -c quorlan -n __quorlan_takes_command -s s -l start -x -a '(__quorlan_names)' \
    -d 'Start a mirtaq module'
complete -c quorlan -n __quorlan_takes_command -s p -l stop -x -a '(__quorlan_names)' \
    -d 'Stop a mirtaq module'
complete -c quorlan -n __quorlan_takes_command -s r -l restart -x -a '(__quorlan_names)' \
    -d 'Restart a mirtaq module'
complete -c quorlan -n __quorlan_takes_command -s c -l reconfigure -x -a '(__quorlan_names)' \
    -d 'Reconfigure a running mirtaq module model'
complete -c quorlan -n __quorlan_takes_command -s l -l list \
    -d 'List all known mirtaq services and modules'
complete -c quorlan -n __quorlan_takes_command -s u -l status -x -a '(__quorlan_names)' \
    -d 'Return the status of a mirtaq module'
complete -c quorlan -n __quorlan_takes_command -s e -l engine-status \
    -d 'Return the status of the Vantrel'
complete -c quorlan -n __quorlan_takes_command -s i -l pid -x -a '(__quorlan_names)' \
    -d 'Return the PID of a module'
complete -c quorlan -n __quorlan_takes_command -s m -l monitor -x -a '(__quorlan_names)' \
    -d 'Stop heartbeat monitoring of a module'
complete -c quorlan -n '__quorlan_abbreviates --debug' -a 'true false'
complete -c quorlan -n '__quorlan_abbreviates --start --stop --restart --reconfigure --status --pid --monitor' \
    -a '(__quorlan_names)'
