# Completion of quorlan for fish, which finds it by its name.

set -g __quorlan_long --help --version --colors --update --update-status --debug --start --stop \
    --restart --reconfigure --list --status --engine-status --pid --monitor

# The names in the engine's tables that the tool takes as an argument. A name fills the first 25
# columns; one too long for the tool is followed by fewer than 9 blanks. The engine is given one
# second, as it may be silent for as long as it likes.
function __quorlan_names
    set -l table (timeout 1 quorlan --list 2>/dev/null </dev/null); or return
    string match -r '^[0-9A-Za-z]{1,16}(?= {9,24})' -- $table
end

# Whether a command is not on the line yet; a second one would be refused. An option that waits
# for its argument is the one being completed and doesn't count.
function __quorlan_no_command
    set -l typed (commandline -opc)[2..]
    string match -qr -- '^-([dsprcuim]|-(debug|start|stop|restart|reconfigure|status|pid|monitor))$' \
        "$typed[-1]"; and set -e typed[-1]
    not string match -qr -- \
        '^-([dsprclueim]|-(debug|start|stop|restart|reconfigure|list|status|engine-status|pid|monitor)(=|$))' \
        $typed
end

# Whether the word before is the beginning of one long option only, and that one is in the list
# given. fish knows long options by their whole names only.
function __quorlan_abbreviates
    set -l typed (commandline -opc)[-1]
    string match -q -- '--?*' $typed; and not contains -- $typed $__quorlan_long; or return
    set -l found (string match -- "$typed*" $__quorlan_long)
    test (count $found) -eq 1; and contains -- $found $argv
end

complete -c quorlan -f
complete -c quorlan -s h -l help -d 'Display help information'
complete -c quorlan -s v -l version -d 'Display version information of this application'
complete -c quorlan -l colors -d 'Use colors in the output'
complete -c quorlan -l update -d 'Request modules update'
complete -c quorlan -l update-status -d 'Return the status of the modules update'
complete -c quorlan -n __quorlan_no_command -s d -l debug -x -a 'true false' \
    -d 'Enter debug mode (true, false)'
complete -c quorlan -n __quorlan_no_command -s s -l start -x -a '(__quorlan_names)' \
    -d 'Start a mirtaq module'
complete -c quorlan -n __quorlan_no_command -s p -l stop -x -a '(__quorlan_names)' \
    -d 'Stop a mirtaq module'
complete -c quorlan -n __quorlan_no_command -s r -l restart -x -a '(__quorlan_names)' \
    -d 'Restart a mirtaq module'
complete -c quorlan -n __quorlan_no_command -s c -l reconfigure -x -a '(__quorlan_names)' \
    -d 'Reconfigure a running mirtaq module model'
complete -c quorlan -n __quorlan_no_command -s l -l list \
    -d 'List all known mirtaq services and modules'
complete -c quorlan -n __quorlan_no_command -s u -l status -x -a '(__quorlan_names)' \
    -d 'Return the status of a mirtaq module'
complete -c quorlan -n __quorlan_no_command -s e -l engine-status \
    -d 'Return the status of the Vantrel'
complete -c quorlan -n __quorlan_no_command -s i -l pid -x -a '(__quorlan_names)' \
    -d 'Return the PID of a module'
complete -c quorlan -n __quorlan_no_command -s m -l monitor -x -a '(__quorlan_names)' \
    -d 'Stop heartbeat monitoring of a module'
complete -c quorlan -n '__quorlan_abbreviates --debug' -a 'true false'
complete -c quorlan -n '__quorlan_abbreviates --start --stop --restart --reconfigure --status --pid --monitor' \
    -a '(__quorlan_names)'
