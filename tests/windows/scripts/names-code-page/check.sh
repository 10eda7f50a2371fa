[ "$(cat 'über.bin')" = A ] || ls
