for file in '日本語/ÄÖÜ.bin' '🚀.bin'; do
    [ "$(cat "$file")" = A ] || echo "$file"
done
