[ "$(cat "$(printf '%060d/' 1 2 3 4 5)out.bin")" = A ] || find . -name out.bin
