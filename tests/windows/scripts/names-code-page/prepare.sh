# Windows-1252: the sharp s, and an umlaut; on disk the name is in Unicode.
printf ':0100000041BE\n:00000001FF\n' > 'groß.hex'
printf 'NEW_BUFFER A FROM_FILE gro\337.hex\nWRITE_FILE \374ber.bin WITH_BUFFERS {A} -setFormat=RawBinary\n' \
    > script.tsn
