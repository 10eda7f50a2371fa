mkdir folder
: > script.tsn
number=0
for path in missing.hex folder 'in\a.hex' "$(printf '%0300d' 0)" 'Q:\no drive.hex' 'a?b.hex' NUL
do
    number=$((number + 1))
    printf 'NEW_BUFFER A%d FROM_FILE "%s"\n' $number "$path" >> script.tsn
done
