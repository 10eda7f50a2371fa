cp "$TESTS"/signature/keys/*.pem .
: >empty.pem
sed 's/^MC4/MC5/' ed25519.pem >damaged.pem
{ head -c 65537 /dev/zero | tr '\0' '#' && cat p256.pem; } >too-long.pem
chmod 600 ./*.pem
