mkdir folder
mkfifo pipe
printf ':0100000041BE\n:00000001FF\n' > in.hex
ln -s loop.hex loop.hex
ln -s in.hex link.hex
: > script.tsn
for path in missing.hex folder pipe loop.hex in.hex/a.hex "$(printf '%0300d' 0)" "" \
            /dev/zero /dev/full /dev/tty
do
    for source in FROM_FILE FROM_FILE_BINARY
    do
        printf 'NEW_BUFFER A %s "%s"\n' $source "$path" >> script.tsn
    done
done
echo 'NEW_BUFFER A FROM_FILE link.hex' >> script.tsn
echo 'PRINT_BUFFER A' >> script.tsn
# No regular file, but it can be read to its end.
echo 'NEW_BUFFER N FROM_FILE_BINARY /dev/null' >> script.tsn
echo 'PRINT_BUFFER N' >> script.tsn
