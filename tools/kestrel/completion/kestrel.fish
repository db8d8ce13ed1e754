# Completion of kestrel for fish. The program itself says what may stand at the cursor.

function __kestrel_offers
    set -l words (commandline -opc)
    set -l current (commandline -ct | string replace -ra '["\'\\\\]' '')
    set -l offers ($words[1] complete (math (count $words) - 1) -- $words[2..-1] "$current" 2>/dev/null)
    switch "$offers[1]"
        case 'words*'
            string join \n -- $offers[2..-1]
        case 'files*'
            __fish_complete_path $current
    end
end
complete -c kestrel -f -a '(__kestrel_offers)'
