cp "$TESTS/signature/keys/ed25519-aes.pem" key.pem
cp "$TESTS/signature/keys/ed25519-public.pem" public.pem
chmod 600 key.pem passphrase
