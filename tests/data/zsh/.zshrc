# For an interactive zsh that completes one command line, LINE, as a Tab at its end does, writes what
# has become of it to the file ANSWER, and ends. COMPLETIONS is the folder of the completions.
fpath=($COMPLETIONS $fpath)
autoload -Uz compinit
compinit -D -u
complete-line() {
  BUFFER=$LINE
  CURSOR=$#BUFFER
  zle complete-word
  print -r -- $BUFFER >$ANSWER
  exit
}
zle -N zle-line-init complete-line
