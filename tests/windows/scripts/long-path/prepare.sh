folder=$(printf '%060d/' 1 2 3 4 5)
mkdir -p "$folder"
printf ':0100000041BE\n:00000001FF\n' > "${folder}in.hex"
printf 'NEW_BUFFER A FROM_FILE %sin.hex\nWRITE_FILE %sout.bin WITH_BUFFERS {A} -setFormat=RawBinary\n' \
    "$folder" "$folder" > script.tsn
