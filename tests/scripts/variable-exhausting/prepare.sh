python3 -c "
print('PRINT_TEXT {' + 'x' * 200000 + '}')
print('SUBSTITUTE (x|y)*z WITH b')" > script.tsn
