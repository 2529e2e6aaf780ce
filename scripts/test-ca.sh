#!/usr/bin/env bash
# The test certificate authority of the HTTPS tests, added to the system's trust
# store (/etc/ssl/certs, which Wine's certificate checks read). It may only issue
# for the name `localhost` (a critical name constraint), and its private key is
# destroyed once it has issued the two server certificates the tests use:
#   $QB_TEST_TLS_DIR/localhost.{crt,key}          valid for ten years
#   $QB_TEST_TLS_DIR/localhost-expired.{crt,key}  expired long ago
# Run as root; does nothing when everything is in place.
set -euo pipefail
tls_dir=${QB_TEST_TLS_DIR:-/etc/quellbarrow-test-tls}
anchor=/usr/local/share/ca-certificates/quellbarrow-test-ca.crt

if [ -s "$tls_dir/localhost.crt" ] && [ -s "$tls_dir/localhost-expired.crt" ] &&
   [ -s "$anchor" ] && [ -e /etc/ssl/certs/quellbarrow-test-ca.pem ]; then
  exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

cat >ca.cnf <<'CNF'
[ca]
default_ca = test_ca
[test_ca]
database = index.txt
new_certs_dir = .
serial = serial
default_md = sha256
policy = any_name
unique_subject = no
copy_extensions = none
[any_name]
commonName = supplied
[authority]
basicConstraints = critical, CA:true, pathlen:0
keyUsage = critical, keyCertSign, cRLSign
nameConstraints = critical, permitted;DNS:localhost
subjectKeyIdentifier = hash
[server]
basicConstraints = critical, CA:false
keyUsage = critical, digitalSignature, keyEncipherment
extendedKeyUsage = serverAuth
subjectAltName = DNS:localhost
authorityKeyIdentifier = keyid
CNF
: >index.txt
echo 1000 >serial

openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.crt -days 3650 \
  -subj "/CN=Quellbarrow Test Authority" -config ca.cnf -extensions authority 2>/dev/null

issue() {  # name start end
  openssl req -newkey rsa:2048 -nodes -keyout "$1.key" -out "$1.csr" -subj "/CN=localhost" 2>/dev/null
  openssl ca -batch -config ca.cnf -cert ca.crt -keyfile ca.key -extensions server \
    -startdate "$2" -enddate "$3" -in "$1.csr" -out "$1.crt" -notext 2>/dev/null
}
issue localhost "$(date -u -d '-1 day' +%Y%m%d%H%M%SZ)" "$(date -u -d '+3650 days' +%Y%m%d%H%M%SZ)"
issue localhost-expired 20200101000000Z 20200201000000Z
shred -u ca.key 2>/dev/null || rm -f ca.key

install -d -m 755 "$tls_dir"
# The keys are readable by every test user: they serve only `localhost`.
install -m 644 localhost.crt localhost.key localhost-expired.crt localhost-expired.key "$tls_dir/"
install -m 644 ca.crt "$tls_dir/ca.crt"
install -D -m 644 ca.crt "$anchor"
update-ca-certificates >/dev/null 2>&1
