#!/bin/sh
# How OpenSSL 3.0 made the keys in keys/, whose passphrase is "correct horse":  make.sh FOLDER
# They are for tests alone. Each run makes others. The key of 16,384 bits takes minutes.
set -eu
mkdir -p "$1"
cd "$1"

key() { openssl genpkey -quiet -out "$1.pem" -algorithm "$2" -pkeyopt "$3"; }
encrypted() {
    name=$1
    source=$2
    shift 2
    openssl pkcs8 -topk8 -in "$source.pem" -out "$name.pem" -passout "pass:correct horse" "$@"
}
number() { printf %s "$2" | xxd -r -p | openssl pkey -inform DER -out "$1.pem"; }
public() { openssl pkey -in "$1.pem" -pubout -out "$1-public.pem"; }

openssl genpkey -out ed25519.pem -algorithm ED25519
key p256 EC ec_paramgen_curve:P-256
key p384 EC ec_paramgen_curve:P-384
key rsa RSA rsa_keygen_bits:2048
for name in ed25519 p256 p384 rsa; do
    public $name
done
openssl ecparam -name prime256v1 -genkey -out p256-sec1.pem # begins with EC PARAMETERS
openssl rsa -in rsa.pem -traditional -out rsa-pkcs1.pem
openssl ec -in p256.pem -pubout -conv_form compressed -out p256-public-compressed.pem

encrypted ed25519-aes ed25519 -v2 aes256
encrypted p256-des3 p256 -v2 des3
encrypted rsa-scrypt rsa -scrypt
encrypted p256-iterations p256 -v2 aes128 -iter 16777217
encrypted p256-pbes1 p256 -v1 PBE-SHA1-3DES
encrypted p256-aria p256 -v2 aria-256-cbc
openssl rsa -in rsa.pem -traditional -aes128 -passout "pass:correct horse" -out rsa-old-headers.pem

key secp256k1 EC ec_paramgen_curve:secp256k1
openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -pkeyopt ec_param_enc:explicit \
    -out p256-explicit.pem
openssl genpkey -algorithm ED448 -out ed448.pem
key rsa-1024 RSA rsa_keygen_bits:1024
key rsa-pss RSA-PSS rsa_keygen_bits:2048
key rsa-16384 RSA rsa_keygen_bits:16384
public rsa-16384
openssl req -x509 -key p256.pem -subj /CN=test -days 36500 -out certificate.pem
# RFC 8032, section 7.1, TEST 3; RFC 6979, appendices A.2.5 and A.2.6.
number rfc8032-test3 302e020100300506032b657004220420\
c5aa8df43f9f837bedb7442f31dcb7b166d38535076f094b85ce3a2e0b4458f7
number rfc6979-p256 30310201010420\
c9afa9d845ba75166b5c215767b1d6934e50c3db36e89b127b8a622b120f6721a00a06082a8648ce3d030107
number rfc6979-p384 303e0201010430\
6b9d3dad2e1b8c1c05b19875b6659f4de23c3b667bf297ba9aa47740787137d8\
96d5724e4c70a825f872c9ea60d2edf5a00706052b81040022
