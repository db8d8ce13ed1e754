#compdef kestrel
# Completion of kestrel for zsh. The program itself says what may stand at the cursor.

_kestrel() {
    local -a offers typed
    typed=("${(@)words//[\\\'\"]/}") # as the shell would hand them over
    offers=("${(@f)$(${~typed[1]} complete $((CURRENT - 2)) -- "${(@)typed[2,CURRENT]}" 2>/dev/null)}")
    case $offers[1] in
        words*)
            offers=("${(@)offers[2,-1]//:/\\:}")
            offers=("${(@)offers/$'\t'/:}")
            _describe -V 'kestrel' offers -M 'm:{[:lower:][:upper:]}={[:upper:][:lower:]}'
            ;;
        files*) _files ;;
        text*) _message -r "${offers[1]#text }" ;;
    esac
}

# Read from a folder of completions it is the function's body, and else a definition.
if [[ $funcstack[1] == _kestrel ]]; then
    _kestrel "$@"
else
    compdef _kestrel kestrel
fi
