# Completes tessarine's options. The program itself knows them: it lists them all when it refuses
# one, so this never falls behind.
complete -c tessarine -n 'string match -q -- "-*" (commandline -ct)' -f \
    -a '(tessarine --list-options 2>&1 | string replace -rf "^known options: " "" | string split " ")'
