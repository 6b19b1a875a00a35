# Completion of tolvexctl for fish. The program itself says what may come next; see src/app/ctl/Completion.h.
function __tolvexctl_complete
    set -l words (commandline -opc)
    set -l word (string unescape -- (commandline -ct))
    set -l option (string match -r -- '^--[^=]*=' "$word")
    set -l path (string replace -r -- '^--[^=]*=' '' "$word")
    $words[1] --complete $words[2..] "$word" 2>/dev/null | while read -l line
        switch $line
            case ':files'
                printf '%s\n' $option(__fish_complete_path "$path")
            case ':folders'
                printf '%s\n' $option(__fish_complete_directories "$path")
            case '?*'
                echo $line
        end
    end
end
complete -c tolvexctl -f -a '(__tolvexctl_complete)'
