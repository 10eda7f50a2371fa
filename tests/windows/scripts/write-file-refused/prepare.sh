mkdir folder
echo kept > kept.hex
printf '%s\n' 'NEW_BUFFER A FROM_VALUES {1, 2, 3}' > script.tsn
for path in folder 'folder\' 'no\such\folder.hex' 'kept.hex\a.hex' \
            "$(printf '%0300d' 0)" "" 'Q:\no drive.hex' 'a?b.hex'
do
    printf 'WRITE_FILE "%s" WITH_BUFFERS {A}\n' "$path" >> script.tsn
done
echo 'WRITE_FILE NUL WITH_BUFFERS {A}' >> script.tsn
echo 'PRINT_TEXT {end}' >> script.tsn
