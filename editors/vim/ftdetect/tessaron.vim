autocmd BufRead,BufNewFile *.tsn setfiletype tessaron
