for key in ed25519 p256 p384; do
    cp "$TESTS/signature/keys/$key.pem" .
done
chmod 600 ./*.pem
