for key in ed25519-aes ed25519-public p256-des3 rsa-scrypt rsa-public p384; do
    cp "$TESTS/signature/keys/$key.pem" .
done
chmod 600 ./*.pem passphrase
chmod 644 ./*-public.pem
