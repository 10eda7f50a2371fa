[ "$(cat kept.hex)" = kept ] || echo "kept.hex was changed"
[ -L link.hex ] || echo "the link was replaced and not its target"
[ -p pipe ] || echo "the pipe is gone"
[ -z "$(ls folder)" ] || echo "something is in the folder"
