# Completion of kestrel for bash. The program itself says what may stand at the cursor.

_kestrel() {
    local words=("${COMP_WORDS[@]:1:COMP_CWORD}") current=$2 kind offers offer
    words=("${words[@]//[\"\'\\]/}") # as the shell would hand them over
    { read -r kind _; mapfile -t offers; } < \
        <("${1/#\~/$HOME}" complete $((COMP_CWORD - 1)) -- "${words[@]}" 2>/dev/null)
    COMPREPLY=()
    case $kind in
        files) compopt -o default ;;
        words)
            for offer in "${offers[@]%%$'\t'*}"; do
                # Inside quotes a blank stands for itself.
                [[ ${COMP_WORDS[COMP_CWORD]} == [\"\']* ]] || printf -v offer %q "$offer"
                COMPREPLY+=("$offer")
            done
            ;;
    esac
}
complete -F _kestrel kestrel
