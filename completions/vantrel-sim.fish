# Completion of vantrel-sim for fish, which finds it by its name.

set -g __vantrel_sim_faults no-accept close silent slow half reset stay-open garbage wrong-type \
    no-result-code error-code refused-status control-characters huge
set -g __vantrel_sim_commands debug update update-status engine-status list start stop restart \
    reconfigure monitor status pid

# The faults or, after a colon, those of each command.
function __vantrel_sim_list_faults
    if string match -q '*:*' -- (commandline -ct)
        printf '%s\n' $__vantrel_sim_faults:$__vantrel_sim_commands
    else
        printf '%s\n' $__vantrel_sim_faults
    end
end

# Whether the word at the cursor belongs to the command that is to be run.
function __vantrel_sim_in_command
    contains -- -- (commandline -opc)
end

function __vantrel_sim_goes_on
    not __vantrel_sim_in_command
    and not string match -qr -- '^(-h|-v|--help|--version)$' (commandline -opc)
end

function __vantrel_sim_complete_command
    set -l words (commandline -opc)
    set -l separator (contains --index -- -- $words)
    complete -C (string join ' ' -- (string escape -- $words[(math $separator + 1)..]) \
        (commandline -ct))
end

complete -c vantrel-sim -f
complete -c vantrel-sim -n __vantrel_sim_in_command -a '(__vantrel_sim_complete_command)'
complete -c vantrel-sim -n __vantrel_sim_goes_on -s h -l help -d 'Display help information'
complete -c vantrel-sim -n __vantrel_sim_goes_on -s v -l version -d 'Display the version'
complete -c vantrel-sim -n __vantrel_sim_goes_on -s s -l state -r -F \
    -d 'Read the services and modules from a JSON file'
complete -c vantrel-sim -n __vantrel_sim_goes_on -s f -l fault -x \
    -a '(__vantrel_sim_list_faults)' -d 'Inject a fault'
complete -c vantrel-sim -n __vantrel_sim_goes_on -l delay -x -d 'Wait before each reply'
complete -c vantrel-sim -n __vantrel_sim_goes_on -l log -r -F \
    -d 'Write the log to a file instead of standard error'
complete -c vantrel-sim -n __vantrel_sim_goes_on -l log-format -x -a 'text json' \
    -d 'Write the log as text (default) or as json'
complete -c vantrel-sim -n __vantrel_sim_goes_on -l isolated \
    -d 'Give simulator and command a network of their own'
complete -c vantrel-sim -n __vantrel_sim_goes_on -l control -d 'Take commands from standard input'
