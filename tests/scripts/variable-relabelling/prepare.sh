# 16 MB of z, which become y, which become x and so on.
python3 -c "
import string
for i in range(99, 77, -1):
    print('SUBSTITUTE v%02d WITH v%02dv%02d' % (i, i - 1, i - 1))
print('SUBSTITUTE v77 WITH zzzz')
letters = string.ascii_lowercase
for name, value in zip(letters[:0:-1], letters[-2::-1]):
    print('SUBSTITUTE %s WITH %s' % (name, value))
print('PRINT_TEXT v99')" > script.tsn
