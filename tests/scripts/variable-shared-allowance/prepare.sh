# Each of the names takes more than half of what one script may take.
python3 -c "
for i in range(1500):
    print('SUBSTITUTE (x+x+)+y%04d WITH b' % i)
print('PRINT_TEXT ' + 'x' * 22)" > script.tsn
