for key in ed25519 ed25519-public rfc8032-test3 p256 rsa; do
    cp "$TESTS/signature/keys/$key.pem" .
done
chmod 600 ./*.pem
