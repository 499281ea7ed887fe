# Completion of kvtdruck for fish: the program says what can stand where.
function __kvtdruck_complete
    set --local words (commandline --tokenize --cut-at-cursor --current-process) (commandline --current-token --cut-at-cursor)
    set --local answer ($words[1] vervollstaendigen $words[2..-1] 2>/dev/null)
    switch "$answer[1]"
        case :datei
            __fish_complete_path (commandline --current-token --cut-at-cursor)
        case :ordner
            __fish_complete_directories (commandline --current-token --cut-at-cursor)
        case '*'
            printf '%s\n' $answer
    end
end
complete --command kvtdruck --no-files --arguments '(__kvtdruck_complete)'
