#!/usr/bin/env bash
# A private nginx on 127.0.0.1:80 for the transfer tests and the benchmark: its
# configuration, pid file, logs and pages all live in DIR.
#   nginx.sh start DIR   (writes DIR/www/page.html; waits up to 30 s for the port)
#   nginx.sh stop DIR
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
    listen 127.0.0.1:80;
    server_name localhost;
    root $dir/www;
  }
}
CONF
}

start() {
  stop
  mkdir -p "$dir/www" "$dir/tmp"
  write_page
  write_config
  # Other test programs may hold port 80 for a while.
  local deadline=$((SECONDS + 30))
  until "$nginx_bin" -p "$dir" -c "$dir/nginx.conf" -e "$dir/error.log" 2>"$dir/start.log"; do
    if [ "$SECONDS" -ge "$deadline" ]; then
      echo "nginx.sh: could not start nginx on 127.0.0.1:80" >&2
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
