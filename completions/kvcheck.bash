# bash completion for kvcheck: its options, the warning codes after --warn= and --no-warn=, and
# job-control scripts (*.kvx) and folders.
_kvcheck()
{
    local cur=${COMP_WORDS[COMP_CWORD]}
    local prev=${COMP_WORDS[COMP_CWORD-1]}
    local codes='KV201 KV202 KV203 KV204 KV205 KV206 KV207 KV208 KV209 KV210 KV211 KV212 KV213 KV214 KV215 KV216 KV217 KV218'
    COMPREPLY=()
    # bash splits "--warn=KV2" into "--warn", "=" and "KV2".
    if [[ $prev == = && $COMP_CWORD -ge 2 ]]; then
        prev=${COMP_WORDS[COMP_CWORD-2]}
    elif [[ $cur == = ]]; then
        cur=''
    fi
    case $prev in
        --warn | --no-warn)
            local done='' word=$cur
            if [[ $cur == *,* ]]; then
                done=${cur%,*},
                word=${cur##*,}
            fi
            mapfile -t COMPREPLY < <(compgen -P "$done" -W "$codes" -- "$word")
            return
            ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W '-w --no-warnings -Werror --warn= --no-warn= --json --help --version --' -- "$cur")
        [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace 2> /dev/null
    else
        compopt -o filenames 2> /dev/null
        mapfile -t COMPREPLY < <(compgen -f -X '!*.kvx' -- "$cur"; compgen -d -- "$cur")
    fi
}
complete -F _kvcheck kvcheck
