for key in p256 rsa; do
    cp "$TESTS/signature/keys/$key.pem" .
done
chmod 600 ./*.pem
