[ "$(cat kept.hex)" = kept ] || echo "kept.hex was changed"
[ -z "$(ls folder)" ] || echo "something is in the folder"
[ "$(ls | tr '\n' ' ')" = "check.sh expected.out folder kept.hex prepare.sh script.tsn " ] ||
    ls
