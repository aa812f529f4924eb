# Completes the words of kalvornctl in zsh: source <(kalvornctl completion zsh)

# The methods that begin with a word, in any case and with or without "native".
_kalvornctl_methods() {
    local method word=${1:l}
    local -a found
    for method in @METHODS@; do
        [[ ${method:l} == $word* || ${${method:l}#native} == $word* ]] && found+=($method)
    done
    compadd -U -a found
}

_kalvornctl() {
    local word=${words[CURRENT]} command='' i
    local -i given=0
    for ((i = 2; i < CURRENT; i++)); do
        case ${words[i]} in
            --device | --events | --timeout | --times) ((i++)) ;;
            -?*) ;;
            *) if [[ -z $command ]]; then command=${words[i]}; else ((given++)); fi ;;
        esac
    done
    case ${words[CURRENT - 1]} in
        --device) compadd -- @DEVICES@; _files; return ;;
        --events) _files; return ;;
        --timeout | --times) return ;;
    esac
    case $command:$given:$word in
        *:*:-*) compadd -- @OPTIONS@ ;;
        :0:*) compadd -- @COMMANDS@ ;;
        call:0:*) _kalvornctl_methods "$word" ;;
        help:0:*) compadd -- @COMMANDS@; _kalvornctl_methods "$word" ;;
        status:0:* | wait:0:* | list:0:*) compadd -- @SERVICES@ ;;
        run:0:*) _files ;;
        completion:0:*) compadd -- bash zsh ;;
    esac
}

compdef _kalvornctl kalvornctl
