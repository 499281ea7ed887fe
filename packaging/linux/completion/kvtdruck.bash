# Completion of kvtdruck for bash, by the package bash-completion: the program says what can stand where.
_kvtdruck() {
    local cur words cword answer
    _get_comp_words_by_ref -n =: -w words -i cword cur
    answer=$("${words[0]/#\~/$HOME}" vervollstaendigen "${words[@]:1:cword}" 2>/dev/null)
    case $answer in
        :datei) _filedir ;;
        :ordner) _filedir -d ;;
        *)
            mapfile -t COMPREPLY < <(cut -f 1 <<<"$answer")
            [ -n "$answer" ] || COMPREPLY=()
            __ltrim_colon_completions "$cur"
            # bash takes what stands behind "=" for a word of its own.
            [[ $cur != --*=* ]] || COMPREPLY=("${COMPREPLY[@]#*=}")
            ;;
    esac
} && complete -F _kvtdruck kvtdruck
