" Writes what Vim makes of each file of the argument list, a line of JSON for each: the name of the
" syntax group at every character of every line.
set nomore
filetype on
syntax on
let s:files = []
for s:file in argv()
  execute "edit" fnameescape(s:file)
  if &filetype !=# "tessaron"
    cquit
  endif
  let s:lines = []
  for s:number in range(1, line("$"))
    call add(s:lines, map(range(1, strlen(getline(s:number))),
          \ 'synIDattr(synID(s:number, v:val, 1), "name")'))
  endfor
  call add(s:files, json_encode(s:lines))
endfor
call writefile(s:files, $GROUPS_FILE)
qall!
