mkdir folder
: > script.tsn
for path in missing.hex folder 'in\a.hex' "$(printf '%0300d' 0)" CON 'Q:\no drive.hex' 'a?b.hex' NUL
do
    printf 'NEW_BUFFER A FROM_FILE "%s"\n' "$path" >> script.tsn
done
