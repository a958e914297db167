# bash completion for kvexec: the options, then job-control scripts (*.kvx) and folders.
_kvexec()
{
    local cur=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    if [[ $COMP_CWORD -eq 1 ]]; then
        if [[ $cur == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '--help --version' -- "$cur")
        else
            compopt -o filenames 2> /dev/null
            mapfile -t COMPREPLY < <(compgen -f -X '!*.kvx' -- "$cur"; compgen -d -- "$cur")
        fi
    elif [[ ${COMP_WORDS[1]} != --* ]]; then
        # the script's own arguments: anything
        compopt -o filenames 2> /dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    fi
}
complete -F _kvexec kvexec
