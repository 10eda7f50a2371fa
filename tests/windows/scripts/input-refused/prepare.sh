mkdir folder
printf ':0100000041BE\n:00000001FF\n' > in.hex
: > script.tsn
# A console, if there is one, and what never is there.
for path in missing.hex folder 'folder\' 'in.hex\a.hex' "$(printf '%0300d' 0)" "" \
            CON 'Q:\no drive.hex' 'a?b.hex' '\\no-server\no-share\in.hex'
do
    for source in FROM_FILE FROM_FILE_BINARY
    do
        printf 'NEW_BUFFER A %s "%s"\n' "$source" "$path" >> script.tsn
    done
done
echo 'NEW_BUFFER A FROM_FILE IN.HEX' >> script.tsn
echo 'PRINT_BUFFER A' >> script.tsn
echo 'NEW_BUFFER N FROM_FILE_BINARY NUL' >> script.tsn
echo 'PRINT_BUFFER N' >> script.tsn
