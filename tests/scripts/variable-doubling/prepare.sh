python3 -c "
for i in range(99, 10, -1):
    print('SUBSTITUTE V%02d WITH V%02dV%02d' % (i, i - 1, i - 1))
print('PRINT_TEXT V99')" > script.tsn
