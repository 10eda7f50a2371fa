" Vim compiler file
" Compiler: tessaron check, which runs a script in memory and writes nothing

if exists("current_compiler")
  finish
endif
let current_compiler = "tessaron"

let s:cpo_save = &cpo
set cpo&vim

" Values of parameters follow after the script, as in   :make inFile=app.hex
CompilerSet makeprg=tessaron\ check\ %:S\ $*
CompilerSet errorformat=
      \%f:%l:%c:\ %trror:\ %m,
      \%f:%l:%c:\ %tarning:\ %m,
      \%f:%l:%c:\ %tote:\ %m,
      \%f:%l:\ %trror:\ %m,
      \%f:%l:\ %tarning:\ %m,
      \%f:%l:\ %tote:\ %m,
      \tessaron:\ %trror:\ %m,
      \tessaron:\ %tarning:\ %m,
      \%f:\ %trror:\ %m,
      \%f:\ %tarning:\ %m,
      \%-G%.%#

let &cpo = s:cpo_save
unlet s:cpo_save
