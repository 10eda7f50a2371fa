for name in mine ours all; do
    cp "$TESTS/signature/keys/ed25519.pem" $name.pem
done
cp "$TESTS/signature/keys/ed25519-public.pem" public.pem
chmod 600 mine.pem
chmod 640 ours.pem
chmod 604 all.pem
chmod 644 public.pem
ln -s mine.pem link.pem
mkdir folder.pem
mkfifo fifo.pem
