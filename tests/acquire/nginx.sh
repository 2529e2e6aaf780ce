#!/usr/bin/env bash
# A private nginx for the transfer tests and the benchmark: its configuration, pid
# file, logs and pages all live in DIR.
#   nginx.sh start DIR   (writes DIR/www/page.html; waits up to 30 s for the ports)
#   nginx.sh stop DIR
# Plain HTTP on 127.0.0.1:80 serves DIR/www; /tls/X answers 301 to https://localhost/X
# and /loop redirects to itself. HTTPS for `localhost` (scripts/test-ca.sh) on 443
# serves the same pages, where /rN/X redirects to /r(N-1)/X and /r1/X to /X, /loop
# to itself and /down to plain HTTP; 8443
# has a certificate of an authority nobody trusts and 8444 an expired one.
set -euo pipefail
cmd=$1
dir=$2
nginx_bin=$(command -v nginx || echo /usr/sbin/nginx)
pid_file=$dir/nginx.pid

write_page() {
  # A form page of about 40 KB: several 5000-byte receives.
  {
    echo '<html><head><title>Order form</title></head><body>'
    echo '<form method="post" action="/cgi/order">'
    for i in $(seq 1 500); do
      echo "<p>Field $i: <input type=\"text\" name=\"field$i\" value=\"value $i\"></p>"
    done
    echo '<input type="submit" value="Send"></form></body></html>'
  } >"$dir/www/page.html"
}

tls_dir=${QB_TEST_TLS_DIR:-/etc/quellbarrow-test-tls}

# A self-signed certificate for `localhost`, made afresh: its issuer is in no trust store.
write_unknown_authority() {
  openssl req -x509 -newkey rsa:2048 -nodes -days 30 -subj "/CN=localhost" \
    -addext "subjectAltName=DNS:localhost" \
    -keyout "$dir/unknown.key" -out "$dir/unknown.crt" 2>/dev/null
}

# One listen line per loopback address the machine has (a client may try ::1 first).
listen_lines() {  # port [ssl]
  echo "listen 127.0.0.1:$1 ${2:-};"
  if ip -6 addr show dev lo 2>/dev/null | grep -q "inet6 ::1/"; then echo "listen [::1]:$1 ${2:-};"; fi
}

tls_server() {  # port certificate-base
  cat <<CONF
  server {
    $(listen_lines "$1" ssl)
    server_name localhost;
    ssl_certificate $2.crt;
    ssl_certificate_key $2.key;
    root $dir/www;
    location = /loop { return 302 https://localhost/loop; }
    location = /down { return 302 http://localhost/page.html; }
$(for n in 1 2 3 4 5 6 7 8 9; do
    echo "    location /r$n/ { rewrite ^/r$n/(.*)\$ /r$((n - 1))/\$1 redirect; }"
  done | sed 's#/r0/#/#')
  }
CONF
}

write_config() {
  local user_line=""
  # As root the workers would run as nobody, who may not read the build tree.
  [ "$(id -u)" -eq 0 ] && user_line="user root;"
  cat >"$dir/nginx.conf" <<CONF
daemon on;
worker_processes 1;
$user_line
pid $pid_file;
error_log $dir/error.log;
events { worker_connections 64; }
http {
  access_log off;
  client_body_temp_path $dir/tmp/body;
  proxy_temp_path $dir/tmp/proxy;
  fastcgi_temp_path $dir/tmp/fastcgi;
  uwsgi_temp_path $dir/tmp/uwsgi;
  scgi_temp_path $dir/tmp/scgi;
  types { text/html html htm; }
  default_type application/octet-stream;
  server {
    $(listen_lines 80)
    server_name localhost;
    root $dir/www;
    location /tls/ { rewrite ^/tls/(.*)\$ https://localhost/\$1 permanent; }
    location = /loop { return 302 http://localhost/loop; }
  }
$(tls_server 443 "$tls_dir/localhost")
$(tls_server 8443 "$dir/unknown")
$(tls_server 8444 "$tls_dir/localhost-expired")
}
CONF
}

start() {
  stop
  mkdir -p "$dir/www" "$dir/tmp"
  write_page
  write_unknown_authority
  write_config
  # Other test programs may hold port 80 for a while.
  local deadline=$((SECONDS + 30))
  until "$nginx_bin" -p "$dir" -c "$dir/nginx.conf" -e "$dir/error.log" 2>"$dir/start.log"; do
    if [ "$SECONDS" -ge "$deadline" ]; then
      echo "nginx.sh: could not start nginx on 127.0.0.1:80, 443, 8443 and 8444" >&2
      cat "$dir/start.log" >&2
      exit 1
    fi
    sleep 0.5
  done
}

stop() {
  [ -f "$pid_file" ] || return 0
  local pid
  pid=$(cat "$pid_file")
  kill "$pid" 2>/dev/null || true
  for _ in $(seq 100); do
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.1
  done
  rm -f "$pid_file"
}

case "$cmd" in
  start) start ;;
  stop) stop ;;
  *) echo "usage: $0 start|stop DIR" >&2; exit 2 ;;
esac
