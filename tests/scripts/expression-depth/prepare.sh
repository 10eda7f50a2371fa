python3 -c "
def line(levels, opening, closing=''):
    print('PRINT_TEXT {v [' + opening * levels + '1' + closing * levels + ']}')
line(1000, '(', ')')
line(1000, '1+')
for levels in 1001, 100000:
    line(levels, '(', ')')
    line(levels, '1+')
    line(levels, '-')
" > script.tsn
