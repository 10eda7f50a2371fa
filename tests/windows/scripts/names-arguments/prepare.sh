printf ':0100000041BE\n:00000001FF\n' > '日本.hex'
printf 'NEW_BUFFER A FROM_FILE "ein"\nWRITE_FILE "aus" WITH_BUFFERS {A} -setFormat=RawBinary\nPRINT_TEXT {ein}\n' \
    > 'größe.tsn'
