mkdir 'a b$c'
printf '#!/bin/sh\necho "called with $*"\n' > "a b\$c/its.sh"
chmod +x "a b\$c/its.sh"
