#!/bin/sh
# Signs where memory for addresses is short, which ends in a signature or in a report, and where there
# is nothing but the program and the key:  limits.sh SIGN_TOOL
set -eu
tool=$1
keys=$(cd "$(dirname "$0")/keys" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
echo firmware >message

# The program itself takes half of this.
kibibytes=10000
refused=0
while :; do
    code=0
    (ulimit -v $kibibytes && exec "$tool" sign 4 raw "$keys/rsa.pem" message signature) 2>log || code=$?
    case $code in
        0) [ -s signature ] && break ;;
        4) refused=$((refused + 1)) ;;
        *) echo "with $kibibytes KiB, it ended with $code:"; cat log; exit 1 ;;
    esac
    kibibytes=$((kibibytes + 500))
    [ $kibibytes -lt 1000000 ]
done
echo "refused with $refused sizes; signs with $kibibytes KiB"
[ $refused -gt 0 ]

[ "$(id -u)" = 0 ] || exit 0
cp "$tool" "$keys/p256.pem" "$keys/rsa.pem" .
for type in 1 3; do
    key=p256.pem
    [ $type = 1 ] || key=rsa.pem
    chroot . "/${tool##*/}" sign $type raw /$key /message /signature
    chroot . "/${tool##*/}" verify $type raw /$key /message /signature
done
