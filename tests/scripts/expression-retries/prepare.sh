# What lacks a parenthesis gives the number read last; from some size on it gives none.
python3 -c "
print('PRINT_TEXT {x [1+1+(2]}')
print('PRINT_TEXT {y [' + '(1+1+1+1+' * 30 + '2]}')
print('PRINT_TEXT {z [' + '(1+1+1+1+' * 30 + '2' + ')' * 30 + ']}')
" > script.tsn
