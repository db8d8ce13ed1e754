# Completion of kestrel for bash: source this file, or put it into /etc/bash_completion.d/kestrel.

_kestrel() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' word skip=''
    local global='--printer --product --timeout --json --no-color --help'

    # The first word that is neither an option nor the value of one.
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ -n $skip ]]; then
            skip=
        elif [[ $word == @(-p|--printer|--product|--timeout) ]]; then
            skip=yes
        elif [[ $word != -* ]]; then
            command=$word
            break
        fi
    done

    local choices=''
    case $command:$previous in
        get:* | set:set | list:*) choices=$(kestrel complete "$current" 2>/dev/null) ;;
        set:*) choices='--verify' ;;
        maintenance:maintenance) choices='calibrate test-page clean deep-clean check-nozzles align vtoe' ;;
        printers:printers) choices='add remove' ;;
        cache:cache) choices='on off' ;;
        addressbook:addressbook) choices='show set export import' ;;
        wifi:wifi) choices='show scan set' ;;
        clock:clock) choices='show set sync' ;;
        firmware:firmware) choices='show upgrade refresh' ;;
        supplies:supplies) choices='order' ;;
        monitor:monitor) choices='show maintenance about mode' ;;
        monitor:mode) choices='always off' ;;
        install:install) choices='port driver printer' ;;
        :*) choices='setup printers status get set list raw maintenance lock unlock cancel cache addressbook wifi
                     ping hosts clock firmware capabilities identity supplies monitor install version complete
                     --version' ;;
    esac
    [[ $current != -* ]] || choices+=" $global"
    mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$current")
}
complete -F _kestrel kestrel
