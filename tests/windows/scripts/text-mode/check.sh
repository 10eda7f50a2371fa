# Each line feed has its carriage return in texts, and none in bytes.
for file in out.hex out.s19 out.inc; do
    [ "$(grep -c . $file)" -gt 0 ] || echo "$file is empty"
    [ "$(grep -c '' $file)" = "$(grep -c "$(printf '\r')\$" $file)" ] || echo "$file"
done
[ "$(od -An -tx1 out.bin)" = " 0a 0d 0a 1a 0a" ] || echo out.bin
