python3 -c "
for i in range(200000):
    print('PRINT_TEXT {a')
for i in range(200000):
    print('PRINT_TEXT \"b')
print('nothing')" > script.tsn
