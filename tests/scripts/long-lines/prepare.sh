python3 -c "
print('PRINT_TEXT {short} //' + 'c' * 5000000)
print('SUBSTITUTE LONG WITH ' + 'v' * 5000000)
print('PRINT_TEXT {LONG' + ' // ' * 1000000)
print('}')" > script.tsn
