mkdir folder
echo 'NEW_BUFFER A FROM_VALUES {65}' > script.tsn
for path in folder 'no\such\folder.hex' 'Q:\no drive.hex' 'a?b.hex' NUL
do
    printf 'WRITE_FILE "%s" WITH_BUFFERS {A}\n' "$path" >> script.tsn
done
