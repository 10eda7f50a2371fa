[ "$(cat 'Übung.bin')" = A ] || ls
