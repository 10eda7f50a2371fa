mkdir folder
mkfifo pipe
: > empty.hex
python3 -c "print(':10000000' + '0' * 10000000 + '\n:00000001FF')" > long-line.hex
