# Completes the words of kalvornctl in bash: source <(kalvornctl completion bash)

# The methods that begin with a word, in any case and with or without "native".
_kalvornctl_methods() {
    local method word=${1,,} key
    for method in @METHODS@; do
        key=${method,,}
        [[ $key == "$word"* || ${key#native} == "$word"* ]] && COMPREPLY+=("$method")
    done
}

_kalvornctl() {
    local word=${COMP_WORDS[COMP_CWORD]} command='' given=0 i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            --device | --events | --timeout | --times) i=$((i + 1)) ;;
            -?*) ;;
            *) if [ -z "$command" ]; then command=${COMP_WORDS[i]}; else given=$((given + 1)); fi ;;
        esac
    done
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        --device) mapfile -t COMPREPLY < <(compgen -W '@DEVICES@' -- "$word"; compgen -f -- "$word"); return ;;
        --events) mapfile -t COMPREPLY < <(compgen -f -- "$word"); return ;;
        --timeout | --times) return ;;
    esac
    case $command:$given:$word in
        *:*:-*) mapfile -t COMPREPLY < <(compgen -W '@OPTIONS@' -- "$word") ;;
        :0:*) mapfile -t COMPREPLY < <(compgen -W '@COMMANDS@' -- "$word") ;;
        call:0:*) _kalvornctl_methods "$word" ;;
        help:0:*)
            mapfile -t COMPREPLY < <(compgen -W '@COMMANDS@' -- "$word")
            _kalvornctl_methods "$word" ;;
        status:0:* | wait:0:* | list:0:*) mapfile -t COMPREPLY < <(compgen -W '@SERVICES@' -- "$word") ;;
        run:0:*) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
        completion:0:*) mapfile -t COMPREPLY < <(compgen -W 'bash zsh' -- "$word") ;;
    esac
}

complete -o filenames -F _kalvornctl kalvornctl ./kalvornctl
