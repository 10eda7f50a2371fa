cp "$TESTS"/signature/keys/*.pem .
: >empty.pem
sed 's/^MC4/MC5/' ed25519.pem >damaged.pem
sed '$d' p256.pem >unfinished.pem
sed '/-----/d' p256.pem | base64 -d >p256.der
head -c 65000 /dev/zero | tr '\0' '#' >longest.pem
cat p256.pem >>longest.pem
head -c $((65536 - $(wc -c <longest.pem))) /dev/zero | tr '\0' '#' >>longest.pem
{ cat longest.pem && echo; } >too-long.pem
: >empty.sig
chmod 600 ./*.pem ./p256.der
