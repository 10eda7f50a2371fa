mkdir '日本語'
printf ':0100000041BE\n:00000001FF\n' > '日本語/größe.hex'
printf 'NEW_BUFFER A FROM_FILE 日本語/größe.hex\nWRITE_FILE 日本語\\ausgabe.hex WITH_BUFFERS {A}\nNEW_BUFFER B FROM_FILE 日本語/fehlt.hex\n' \
    > 'größe.tsn'
