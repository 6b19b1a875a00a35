# Completion of tolvexctl for bash. The program itself says what may come next; see src/app/ctl/Completion.h.
_tolvexctl() {
    local line=${COMP_LINE:0:COMP_POINT} words=() piece word path quote='' glued='' candidates=()

    # bash takes words apart at ":" and "=" too: put together what no blank separates.
    for piece in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
        if [[ ${#words[@]} -eq 0 || $line == [[:blank:]]* ]]; then
            line=${line#"${line%%[![:blank:]]*}"}
            words+=("")
        fi
        words[-1]+=$piece
        line=${line#"$piece"}
    done
    # Take away what the shell takes away before the program gets a word. `glued` is the part of the last word that
    # bash keeps when it puts a candidate in.
    for piece in "${!words[@]}"; do
        word=${words[piece]} quote=
        case $word in
        [\'\"]*)
            quote=${word:0:1}
            word=${word#?}
            word=${word%"$quote"}
            ;;
        '~'/*) word=$HOME/${word#??} ;;
        *)
            # shellcheck disable=SC2162 # reading takes the backslashes away
            IFS= read word <<<"$word"
            glued=${word%"${word##*[:=]}"}
            ;;
        esac
        words[piece]=$word
    done
    [[ $quote ]] && glued=

    while IFS= read -r piece; do
        case $piece in
        :files | :folders)
            while IFS= read -r path; do
                [[ -d $path ]] && path+=/
                candidates+=("${word%"${word#--*=}"}$path")
            done < <(compgen "$([[ $piece == :files ]] && echo -f || echo -d)" -- "${word#--*=}")
            ;;
        ?*) candidates+=("${piece%%$'\t'*}") ;;
        esac
    done < <("${words[0]}" --complete "${words[@]:1}" 2>/dev/null)

    COMPREPLY=()
    for piece in "${candidates[@]}"; do
        piece=${piece:${#glued}}
        [[ $quote ]] || printf -v piece %q "$piece"
        COMPREPLY+=("$piece")
        # A folder goes on.
        [[ $piece == *[/\\] ]] && compopt -o nospace 2>/dev/null
    done
}
complete -F _tolvexctl tolvexctl
