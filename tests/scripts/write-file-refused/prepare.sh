mkdir folder
mkfifo pipe
echo kept > kept.hex
ln -s loop.hex loop.hex
ln -s no/such/target.hex dangling.hex
ln -s real.hex link.hex
echo kept > real.hex
printf '%s\n' 'NEW_BUFFER A FROM_VALUES {1, 2, 3}' > script.tsn
write() { printf 'WRITE_FILE "%s" WITH_BUFFERS {A} %s\n' "$@" >> script.tsn; }
for path in folder folder/ no/such/folder.hex kept.hex/a.hex pipe loop.hex dangling.hex \
            "$(printf '%0300d' 0)" ""
do
    write "$path"
done
for format in IntelHexExtended IntelHexSegment MotorolaS_32 EmbeddedC_Assembler RawBinary
do
    write /dev/full -setFormat=$format
    write folder -setFormat=$format
done
write link.hex
echo 'PRINT_TEXT {end}' >> script.tsn
