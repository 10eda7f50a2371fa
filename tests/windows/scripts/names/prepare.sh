# In UTF-8: "Japanese" in its own script, umlauts, a character beyond the first plane.
mkdir '日本語'
printf ':0100000041BE\n:00000001FF\n' > '日本語/größe.hex'
cat > script.tsn <<'END'
SUBSTITUTE ort WITH 日本語
NEW_BUFFER A FROM_FILE ort/größe.hex
WRITE_FILE ort\ÄÖÜ.bin WITH_BUFFERS {A} -setFormat=RawBinary
WRITE_FILE 🚀.bin WITH_BUFFERS {A} -setFormat=RawBinary
NEW_BUFFER B FROM_FILE 日本語/fehlt.hex
CALL_APP type WITH_ARGUMENTS {日本語\ÄÖÜ.bin}
PRINT_TEXT {größe}
END
