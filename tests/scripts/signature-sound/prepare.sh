for key in rfc8032-test3 rfc6979-p256 rfc6979-p384 p256 p256-public rsa rsa-public; do
    cp "$TESTS/signature/keys/$key.pem" .
done
chmod 600 ./*.pem
