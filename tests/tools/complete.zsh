# complete.zsh FOLDER LINE...: types each line into an interactive zsh that takes completions from the folder,
# presses Tab, and shows what the line became.
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "PROMPT= RPROMPT=; stty -echo; fpath=($1 \$fpath); autoload -U compinit; compinit -u -D"
zpty -w shell "show() { print -r -- \"<\$BUFFER>\"; BUFFER= }; zle -N show; bindkey '^X' show; print REA''DY"
zpty -r shell out '*READY*'
shift
for line; do
    zpty -w -n shell "$line"$'\t\x18'
    zpty -r shell out '*<*>*'
    print -r -- "${${out##*<}%>*}"
done
zpty -d shell
