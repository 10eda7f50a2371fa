" Vim filetype plugin file
" Language: Tessaron scripts, which prepare images for flash memory

if exists("b:did_ftplugin")
  finish
endif
let b:did_ftplugin = 1

setlocal comments=:// commentstring=//\ %s
" The characters of a name.
setlocal iskeyword=48-57,65-90,97-122,35,@-@,95,45,33,60,62,38
" gf opens a file that is included, and [i shows a line of one.
setlocal include=^\\s*INCLUDE suffixesadd=.tsn
if executable("tessaron")
  setlocal formatprg=tessaron\ format
endif
compiler tessaron

let b:undo_ftplugin = "setlocal comments< commentstring< iskeyword< include< suffixesadd< formatprg<"
