# Completes tessarine's options. The program itself knows them: it lists them all when it refuses
# one, so this never falls behind.
_tessarine() {
    local current=${COMP_WORDS[COMP_CWORD]} options
    [[ $current == -* ]] || return
    options=$("${COMP_WORDS[0]}" --list-options 2>&1 | sed -n 's/^known options: //p')
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
}
complete -o default -F _tessarine tessarine
